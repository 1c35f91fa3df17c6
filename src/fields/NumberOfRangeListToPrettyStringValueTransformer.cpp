#include "fields/NumberOfRangeListToPrettyStringValueTransformer.h"

#include "fields/NumberStrings.h"

namespace quorlin {

plist::Value
NumberOfRangeListToPrettyStringValueTransformer::transformedValue(const PreferenceKeyValue& value) const {
    const plist::Value* stored = value.plistValue();
    const auto text = stored ? NumberStrings::stringValue(*stored) : std::nullopt;
    if (!text)
        return {};
    return m_prettyRangeList.label(*text).value_or(*text);
}

PreferenceKeyValue
NumberOfRangeListToPrettyStringValueTransformer::reverseTransformedValue(const plist::Value& value) const {
    const auto label = value.toString();
    const auto raw = label ? m_prettyRangeList.firstKey(*label) : std::nullopt;
    if (!raw)
        return {};
    if (m_isFloat)
        return plist::Value(NumberStrings::doubleValue(*raw));
    return plist::Value(NumberStrings::integerValue(*raw));
}

} // namespace quorlin
