#include "fields/AppSelectorInstrumentController.h"

namespace quorlin {

void AppSelectorInstrumentController::setShowingButtons(bool showing) {
    m_showingButtons = showing;
    notifyChange();
}

std::optional<QString> AppSelectorInstrumentController::bundleId() const {
    const auto& key = representedPreferenceKey();
    const plist::Value* stored = key ? key->value().plistValue() : nullptr;
    return stored ? stored->toString() : std::nullopt;
}

bool AppSelectorInstrumentController::isDisabled() const {
    const auto& key = representedPreferenceKey();
    return key && key->excludedDisabledByConditional();
}

void AppSelectorInstrumentController::choose(const QString& chosenBundleId) {
    if (chosenBundleId.isEmpty())
        return;
    writeValue(PreferenceKeyValue(plist::Value(chosenBundleId)));
    notifyChange();
}

void AppSelectorInstrumentController::remove() {
    writeValue({});
    notifyChange();
}

void AppSelectorInstrumentController::bindValue() {
    bind(ValueBinding::Role::value, QStringLiteral("value"), {});
}

} // namespace quorlin
