#include "fields/TextStyleAttributedStringToCocoaAttributedStringValueTransformer.h"

namespace quorlin {

plist::Value TextStyleAttributedStringToCocoaAttributedStringValueTransformer::transformedValue(
    const PreferenceKeyValue& value) const {
    const plist::Value* stored = value.plistValue();
    if (stored && stored->isString())
        return *stored;
    return {};
}

} // namespace quorlin
