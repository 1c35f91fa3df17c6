#include "fields/StringEmptinessToBooleanValueTransformer.h"

namespace quorlin {

plist::Value
StringEmptinessToBooleanValueTransformer::transformedValue(const PreferenceKeyValue& value) const {
    const plist::Value* stored = value.plistValue();
    const auto text = stored ? stored->toString() : std::nullopt;
    return text && text->isEmpty();
}

} // namespace quorlin
