#pragma once

#include "fields/PrettyRangeList.h"
#include "fields/ValueTransformer.h"

namespace quorlin {

// The selected number of a pop-up shown by its label, or by its own text
// when it has none; the label reads back as the first raw value bearing it.
class NumberOfRangeListToPrettyStringValueTransformer : public ValueTransformer {
public:
    NumberOfRangeListToPrettyStringValueTransformer(PrettyRangeList prettyRangeList = {},
                                                    bool isFloat = false)
        : m_prettyRangeList(std::move(prettyRangeList))
        , m_isFloat(isFloat) {}

    QString name() const override {
        return QStringLiteral("NumberOfRangeListToPrettyStringValueTransformer");
    }
    bool allowsReverseTransformation() const override { return true; }
    plist::Value transformedValue(const PreferenceKeyValue& value) const override;
    PreferenceKeyValue reverseTransformedValue(const plist::Value& value) const override;

private:
    PrettyRangeList m_prettyRangeList;
    bool m_isFloat;
};

} // namespace quorlin
