#pragma once

#include "fields/ValueTransformer.h"

namespace quorlin {

// An integer shown as text; text reads back as far as it has digits.
class IntegerToStringValueTransformer : public ValueTransformer {
public:
    QString name() const override { return QStringLiteral("IntegerToStringValueTransformer"); }
    bool allowsReverseTransformation() const override { return true; }
    plist::Value transformedValue(const PreferenceKeyValue& value) const override;
    PreferenceKeyValue reverseTransformedValue(const plist::Value& value) const override;
};

} // namespace quorlin
