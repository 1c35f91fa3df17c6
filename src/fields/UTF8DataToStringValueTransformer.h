#pragma once

#include "fields/ValueTransformer.h"

namespace quorlin {

// Data shown as the UTF-8 text it holds; data that isn't UTF-8 shows nothing.
class UTF8DataToStringValueTransformer : public ValueTransformer {
public:
    QString name() const override { return QStringLiteral("UTF8DataToStringValueTransformer"); }
    bool allowsReverseTransformation() const override { return true; }
    plist::Value transformedValue(const PreferenceKeyValue& value) const override;
    PreferenceKeyValue reverseTransformedValue(const plist::Value& value) const override;
};

} // namespace quorlin
