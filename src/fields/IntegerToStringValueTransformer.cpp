#include "fields/IntegerToStringValueTransformer.h"

#include "fields/NumberStrings.h"

namespace quorlin {

PreferenceKeyValue IntegerToStringValueTransformer::reverseTransformedValue(const plist::Value& value) const {
    const auto text = value.toString();
    if (!text)
        return {};
    return plist::Value(NumberStrings::integerValue(*text));
}

} // namespace quorlin
