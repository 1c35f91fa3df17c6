#include "fields/RealToStringValueTransformer.h"

#include "fields/NumberStrings.h"

namespace quorlin {

PreferenceKeyValue RealToStringValueTransformer::reverseTransformedValue(const plist::Value& value) const {
    const auto text = value.toString();
    if (!text)
        return {};
    const float single = float(NumberStrings::doubleValue(*text));
    return plist::Value(double(single));
}

} // namespace quorlin
