#pragma once

#include "fields/ValueTransformer.h"

namespace quorlin {

// A real shown as text; text reads back at single precision, as the field's number type holds it.
class RealToStringValueTransformer : public ValueTransformer {
public:
    QString name() const override { return QStringLiteral("RealToStringValueTransformer"); }
    bool allowsReverseTransformation() const override { return true; }
    plist::Value transformedValue(const PreferenceKeyValue& value) const override;
    PreferenceKeyValue reverseTransformedValue(const plist::Value& value) const override;
};

} // namespace quorlin
