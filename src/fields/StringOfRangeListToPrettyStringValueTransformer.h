#pragma once

#include "fields/PrettyRangeList.h"
#include "fields/ValueTransformer.h"

namespace quorlin {

// The selected string of a pop-up shown by its label. A label no raw value
// bears reads back as itself, so a value outside the list survives.
class StringOfRangeListToPrettyStringValueTransformer : public ValueTransformer {
public:
    explicit StringOfRangeListToPrettyStringValueTransformer(PrettyRangeList prettyRangeList = {})
        : m_prettyRangeList(std::move(prettyRangeList)) {}

    QString name() const override {
        return QStringLiteral("StringOfRangeListToPrettyStringValueTransformer");
    }
    bool allowsReverseTransformation() const override { return true; }
    plist::Value transformedValue(const PreferenceKeyValue& value) const override;
    PreferenceKeyValue reverseTransformedValue(const plist::Value& value) const override;

private:
    PrettyRangeList m_prettyRangeList;
};

} // namespace quorlin
