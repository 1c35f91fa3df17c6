#include "fields/AppSelectorResultTypeToLocalizedStringValueTransformer.h"

namespace quorlin {

plist::Value AppSelectorResultTypeToLocalizedStringValueTransformer::transformedValue(
    const PreferenceKeyValue& value) const {
    const plist::Value* stored = value.plistValue();
    const auto type = stored ? stored->toString() : std::nullopt;
    if (type == QLatin1String("systemApp"))
        return QStringLiteral("System App");
    if (type == QLatin1String("storeApp"))
        return QStringLiteral("Store App");
    if (type == QLatin1String("bundleId"))
        return QStringLiteral("Bundle Identifier");
    return {};
}

} // namespace quorlin
