#pragma once

#include "fields/ValueTransformer.h"

namespace quorlin {

// A number shown as text. Showing is the same for every kind of number;
// reading back decides the kind, so subclasses give only that.
class NumberToStringValueTransformer : public ValueTransformer {
public:
    bool allowsReverseTransformation() const override { return true; }
    plist::Value transformedValue(const PreferenceKeyValue& value) const override;
};

} // namespace quorlin
