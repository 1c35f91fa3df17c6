#include "fields/AppSelectorInstrumentController.h"

#include "apptools/iTunesQueryHelper.h"
#include "apptools/iTunesQueryHelperAppObject.h"
#include "fields/AppNeighbourKeys.h"

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
    choose(apptools::ChosenApp{chosenBundleId, {}, {}, {}, {}});
}

void AppSelectorInstrumentController::choose(const apptools::ChosenApp& app) {
    const auto& key = representedPreferenceKey();
    if (app.bundleId.isEmpty() || !key)
        return;
    // An app read from disk names itself: no store has to know it.
    if (app.appName || app.iconFile)
        apptools::iTunesQueryHelper::shared()
            .appObject(app.bundleId)
            ->takeLocalApp(app.appName, app.iconFile);
    const auto changes = AppNeighbourKeys::changes(key, app);
    if (changes.size() == 1)
        writeValue(changes.first().second);
    else
        writer()->writeValues(changes, QStringLiteral("Choose App"));
    notifyChange();
}

std::optional<InstrumentAlert> AppSelectorInstrumentController::chooseFile(const QString& path) {
    const auto app = apptools::ChosenApp::fromFile(path);
    if (!app)
        return InstrumentAlert{
            QStringLiteral("App Inspection Failed"),
            QStringLiteral("The app bundle %1 could not be inspected.").arg(QFileInfo(path).fileName())};
    choose(*app);
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
