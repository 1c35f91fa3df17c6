#include "fields/NumberRangeListToPrettyListValueTransformer.h"

#include "fields/NumberStrings.h"

namespace quorlin {

plist::Value
NumberRangeListToPrettyListValueTransformer::transformedValue(const PreferenceKeyValue& value) const {
    const plist::Value* stored = value.plistValue();
    const plist::Array* numbers = stored ? stored->array() : nullptr;
    if (!numbers)
        return {};
    plist::Array labels;
    for (const plist::Value& number : *numbers) {
        if (const auto text = NumberStrings::stringValue(number))
            labels.append(m_prettyRangeList.label(*text).value_or(*text));
    }
    return labels;
}

} // namespace quorlin
