#pragma once

#include "fields/PrettyRangeList.h"
#include "fields/ValueTransformer.h"

namespace quorlin {

// The entries of a pop-up of numbers: each number by its label, or its text.
class NumberRangeListToPrettyListValueTransformer : public ValueTransformer {
public:
    explicit NumberRangeListToPrettyListValueTransformer(PrettyRangeList prettyRangeList = {})
        : m_prettyRangeList(std::move(prettyRangeList)) {}

    QString name() const override { return QStringLiteral("NumberRangeListToPrettyListValueTransformer"); }
    plist::Value transformedValue(const PreferenceKeyValue& value) const override;

private:
    PrettyRangeList m_prettyRangeList;
};

} // namespace quorlin
