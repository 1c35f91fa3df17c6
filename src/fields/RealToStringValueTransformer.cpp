#include "fields/RealToStringValueTransformer.h"

#include "fields/NumberStrings.h"

namespace quorlin {

plist::Value RealToStringValueTransformer::transformedValue(const PreferenceKeyValue& value) const {
    const plist::Value* stored = value.plistValue();
    if (!stored)
        return {};
    if (auto text = NumberStrings::stringValue(*stored))
        return *text;
    return {};
}

PreferenceKeyValue RealToStringValueTransformer::reverseTransformedValue(const plist::Value& value) const {
    const auto text = value.toString();
    if (!text)
        return {};
    const float single = float(NumberStrings::doubleValue(*text));
    return plist::Value(double(single));
}

} // namespace quorlin
