#pragma once

#include "fields/PrettyRangeList.h"
#include "fields/ValueTransformer.h"

namespace quorlin {

// The entries of a pop-up of strings: each by its label, or itself. Items
// that aren't strings pass unchanged both ways.
class StringRangeListToPrettyListValueTransformer : public ValueTransformer {
public:
    explicit StringRangeListToPrettyListValueTransformer(PrettyRangeList prettyRangeList = {})
        : m_prettyRangeList(std::move(prettyRangeList)) {}

    QString name() const override { return QStringLiteral("StringRangeListToPrettyListValueTransformer"); }
    bool allowsReverseTransformation() const override { return true; }
    plist::Value transformedValue(const PreferenceKeyValue& value) const override;
    PreferenceKeyValue reverseTransformedValue(const plist::Value& value) const override;

private:
    PrettyRangeList m_prettyRangeList;
};

} // namespace quorlin
