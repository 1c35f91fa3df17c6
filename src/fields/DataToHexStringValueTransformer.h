#pragma once

#include "fields/ValueTransformer.h"

namespace quorlin {

// Data as lower-case hexadecimal. Each byte is written without padding, so
// 0x0A, 0xFF gives "aff": that is how stored fields have always shown, and
// it is kept. Reading back wants pairs of digits, with an optional "0x".
class DataToHexStringValueTransformer : public ValueTransformer {
public:
    QString name() const override { return QStringLiteral("DataToHexStringValueTransformer"); }
    bool allowsReverseTransformation() const override { return true; }
    plist::Value transformedValue(const PreferenceKeyValue& value) const override;
    PreferenceKeyValue reverseTransformedValue(const plist::Value& value) const override;
};

} // namespace quorlin
