#pragma once

#include "fields/ValueTransformer.h"

namespace quorlin {

// A list of numbers as a list of their texts; items that aren't numbers are dropped.
class NumberArrayToStringArrayValueTransformer : public ValueTransformer {
public:
    QString name() const override { return QStringLiteral("NumberArrayToStringArrayValueTransformer"); }
    plist::Value transformedValue(const PreferenceKeyValue& value) const override;
};

} // namespace quorlin
