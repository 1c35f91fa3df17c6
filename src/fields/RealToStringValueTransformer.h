#pragma once

#include "fields/NumberToStringValueTransformer.h"

namespace quorlin {

// A real shown as text; text reads back at single precision, as the field's number type holds it.
class RealToStringValueTransformer : public NumberToStringValueTransformer {
public:
    QString name() const override { return QStringLiteral("RealToStringValueTransformer"); }
    PreferenceKeyValue reverseTransformedValue(const plist::Value& value) const override;
};

} // namespace quorlin
