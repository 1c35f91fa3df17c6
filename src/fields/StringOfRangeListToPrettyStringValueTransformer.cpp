#include "fields/StringOfRangeListToPrettyStringValueTransformer.h"

namespace quorlin {

plist::Value
StringOfRangeListToPrettyStringValueTransformer::transformedValue(const PreferenceKeyValue& value) const {
    const plist::Value* stored = value.plistValue();
    const auto text = stored ? stored->toString() : std::nullopt;
    if (!text)
        return {};
    return m_prettyRangeList.label(*text).value_or(*text);
}

PreferenceKeyValue
StringOfRangeListToPrettyStringValueTransformer::reverseTransformedValue(const plist::Value& value) const {
    const auto label = value.toString();
    if (!label)
        return {};
    return plist::Value(m_prettyRangeList.firstKey(*label).value_or(*label));
}

} // namespace quorlin
