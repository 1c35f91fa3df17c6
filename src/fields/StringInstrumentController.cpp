#include "fields/StringInstrumentController.h"

#include "fields/ArrayToX500NameStringValueTransformer.h"
#include "fields/DataToHexStringValueTransformer.h"
#include "fields/StringsArrayToCommaDelimitedStringValueTransformer.h"
#include "fields/TypeAdapter.h"
#include "fields/ValueTransformerRegistry.h"

namespace quorlin {

namespace {

using Kind = PFMKeyPrototype::Kind;

std::shared_ptr<const ValueTransformer> transformerFor(const PreferenceKey::Pointer& key) {
    const PFMKeyPrototype& prototype = key->prototype();
    const auto& adapter = prototype.typeAdapter();
    if (prototype.kind() == Kind::data && !adapter)
        return ValueTransformerRegistry::transformer(QStringLiteral("UTF8DataToStringValueTransformer"));
    if (prototype.kind() == Kind::data && adapter == TypeAdapter::dataToHexString)
        return ValueTransformerRegistry::transformer(QStringLiteral("DataToHexStringValueTransformer"));
    if (prototype.kind() == Kind::array && adapter == TypeAdapter::stringsArrayToCommaDelimitedString)
        return std::make_shared<StringsArrayToCommaDelimitedStringValueTransformer>(key->prototypePointer(),
                                                                                    key);
    if (prototype.kind() == Kind::array && adapter == TypeAdapter::oidAndValueArraysToX500Name)
        return std::make_shared<ArrayToX500NameStringValueTransformer>(key->prototypePointer(), key);
    return nullptr;
}

} // namespace

bool StringInstrumentController::accepts(Kind kind, const std::optional<QString>& typeAdapter) {
    switch (kind) {
    case Kind::string:
        return !typeAdapter;
    case Kind::data:
        return !typeAdapter || typeAdapter == TypeAdapter::dataToHexString;
    case Kind::array:
        return typeAdapter == TypeAdapter::stringsArrayToCommaDelimitedString ||
               typeAdapter == TypeAdapter::oidAndValueArraysToX500Name;
    default:
        return false;
    }
}

BindingOptions StringInstrumentController::bindingOptions() const {
    BindingOptions options = TextBasedInstrumentController::bindingOptions();
    if (const auto& key = representedPreferenceKey())
        options.valueTransformer = transformerFor(key);
    return options;
}

// A required comma list holds an empty array rather than nothing, so it is
// never unset and a "[Required]" hint would be misleading.
std::optional<QString> StringInstrumentController::requiredPlaceholder() const {
    const auto& key = representedPreferenceKey();
    if (key && key->prototype().kind() == Kind::array &&
        key->prototype().typeAdapter() == TypeAdapter::stringsArrayToCommaDelimitedString)
        return std::nullopt;
    return TextBasedInstrumentController::requiredPlaceholder();
}

} // namespace quorlin
