#include "fields/IntegerToStringValueTransformer.h"

#include "fields/NumberStrings.h"

namespace quorlin {

plist::Value IntegerToStringValueTransformer::transformedValue(const PreferenceKeyValue& value) const {
    const plist::Value* stored = value.plistValue();
    if (!stored)
        return {};
    if (auto text = NumberStrings::stringValue(*stored))
        return *text;
    return {};
}

PreferenceKeyValue IntegerToStringValueTransformer::reverseTransformedValue(const plist::Value& value) const {
    const auto text = value.toString();
    if (!text)
        return {};
    return plist::Value(NumberStrings::integerValue(*text));
}

} // namespace quorlin
