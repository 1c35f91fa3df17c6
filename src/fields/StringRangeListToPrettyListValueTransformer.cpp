#include "fields/StringRangeListToPrettyListValueTransformer.h"

namespace quorlin {

namespace {

template <typename Map>
plist::Value mapStrings(const plist::Value* list, Map map) {
    const plist::Array* items = list ? list->array() : nullptr;
    if (!items)
        return {};
    plist::Array mapped;
    for (const plist::Value& item : *items) {
        const auto text = item.toString();
        mapped.append(text ? plist::Value(map(*text)) : item);
    }
    return mapped;
}

} // namespace

plist::Value
StringRangeListToPrettyListValueTransformer::transformedValue(const PreferenceKeyValue& value) const {
    return mapStrings(value.plistValue(),
                      [&](const QString& raw) { return m_prettyRangeList.label(raw).value_or(raw); });
}

PreferenceKeyValue
StringRangeListToPrettyListValueTransformer::reverseTransformedValue(const plist::Value& value) const {
    const plist::Value raw = mapStrings(
        &value, [&](const QString& label) { return m_prettyRangeList.firstKey(label).value_or(label); });
    if (raw.isNull())
        return {};
    return raw;
}

} // namespace quorlin
