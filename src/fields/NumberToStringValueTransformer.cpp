#include "fields/NumberToStringValueTransformer.h"

#include "fields/NumberStrings.h"

namespace quorlin {

plist::Value NumberToStringValueTransformer::transformedValue(const PreferenceKeyValue& value) const {
    const plist::Value* stored = value.plistValue();
    if (!stored)
        return {};
    if (auto text = NumberStrings::stringValue(*stored))
        return *text;
    return {};
}

} // namespace quorlin
