#include "fields/AppSelectorInstrumentController.h"

#include "apptools/AppBundle.h"

#include <QFileInfo>

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

std::optional<InstrumentAlert> AppSelectorInstrumentController::chooseFile(const QString& path) {
    const auto bundle = apptools::AppBundle::create(path);
    const auto identifier = bundle ? bundle->bundleIdentifier() : std::nullopt;
    if (!identifier || identifier->isEmpty())
        return InstrumentAlert{
            QStringLiteral("App Inspection Failed"),
            QStringLiteral("The app bundle %1 could not be inspected.").arg(QFileInfo(path).fileName())};
    choose(*identifier);
    return std::nullopt;
}

void AppSelectorInstrumentController::remove() {
    writeValue({});
    notifyChange();
}

void AppSelectorInstrumentController::bindValue() {
    bind(ValueBinding::Role::value, QStringLiteral("value"), {});
}

} // namespace quorlin
