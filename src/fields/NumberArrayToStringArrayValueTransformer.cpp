#include "fields/NumberArrayToStringArrayValueTransformer.h"

#include "fields/NumberStrings.h"

namespace quorlin {

plist::Value
NumberArrayToStringArrayValueTransformer::transformedValue(const PreferenceKeyValue& value) const {
    const plist::Value* stored = value.plistValue();
    const plist::Array* numbers = stored ? stored->array() : nullptr;
    if (!numbers)
        return {};
    plist::Array texts;
    for (const plist::Value& number : *numbers) {
        if (auto text = NumberStrings::stringValue(number))
            texts.append(*text);
    }
    return texts;
}

} // namespace quorlin
