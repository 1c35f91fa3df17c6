#pragma once

#include "fields/NumberToStringValueTransformer.h"

namespace quorlin {

// An integer shown as text; text reads back as far as it has digits.
class IntegerToStringValueTransformer : public NumberToStringValueTransformer {
public:
    QString name() const override { return QStringLiteral("IntegerToStringValueTransformer"); }
    PreferenceKeyValue reverseTransformedValue(const plist::Value& value) const override;
};

} // namespace quorlin
