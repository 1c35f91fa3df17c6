#include "fields/OptionalStringToPopUpButtonIndexValueTransformer.h"

namespace quorlin {

plist::Value
OptionalStringToPopUpButtonIndexValueTransformer::transformedValue(const PreferenceKeyValue& value) const {
    const plist::Value* stored = value.plistValue();
    const auto text = stored ? stored->toString() : std::nullopt;
    if (!text) {
        if (m_noValueIndex)
            return plist::Value(*m_noValueIndex);
        return {};
    }
    const qsizetype index = m_itemTitles.indexOf(*text);
    if (index < 0)
        return {};
    return plist::Value(qint64(index));
}

PreferenceKeyValue
OptionalStringToPopUpButtonIndexValueTransformer::reverseTransformedValue(const plist::Value& value) const {
    const auto index = value.numberAsInteger();
    if (!index || index == m_noValueIndex)
        return {};
    if (*index < 0 || *index >= m_itemTitles.size())
        return {};
    return plist::Value(m_itemTitles.at(*index));
}

} // namespace quorlin
