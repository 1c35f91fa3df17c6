#include "fields/IntegerNSNumberToBoolNSNumberValueTransformer.h"

namespace quorlin {

plist::Value
IntegerNSNumberToBoolNSNumberValueTransformer::transformedValue(const PreferenceKeyValue& value) const {
    const plist::Value* stored = value.plistValue();
    const auto number = stored ? stored->numberAsReal() : std::nullopt;
    if (!number)
        return {};
    return *number != 0;
}

PreferenceKeyValue
IntegerNSNumberToBoolNSNumberValueTransformer::reverseTransformedValue(const plist::Value& value) const {
    const auto number = value.numberAsReal();
    if (!number)
        return {};
    return plist::Value(*number == 0 ? qint64(0) : m_trueValue);
}

} // namespace quorlin
