#include "fields/DataInstrumentController.h"

#include "fields/FileChoice.h"
#include "validation/ByteCountFormatter.h"

namespace quorlin {

void DataInstrumentController::setShowingButtons(bool showing) {
    m_showingButtons = showing;
    notifyChange();
}

std::optional<QByteArray> DataInstrumentController::storedData() const {
    const auto& key = representedPreferenceKey();
    const plist::Value* stored = key ? key->value().plistValue() : nullptr;
    return stored ? stored->toData() : std::nullopt;
}

QString DataInstrumentController::chooseButtonTitle() const {
    return FileChoice::chooseButtonTitle(storedData().has_value());
}

int DataInstrumentController::buttonVisibilityPriority() const {
    const auto& key = representedPreferenceKey();
    return key ? FileChoice::buttonVisibilityPriority(key->prototype()) : 0;
}

std::optional<QString> DataInstrumentController::sizeText() const {
    const auto data = storedData();
    if (!data)
        return std::nullopt;
    return QStringLiteral("Contains %1 of data").arg(ByteCountFormatter::fileStyle(data->size()));
}

QStringList DataInstrumentController::allowedFileExtensions() const {
    const auto& key = representedPreferenceKey();
    return key ? key->prototype().allowedFileExtensions().value_or(QStringList()) : QStringList();
}

std::optional<InstrumentAlert> DataInstrumentController::chooseFile(const QString& filePath) {
    const auto& key = representedPreferenceKey();
    if (!key)
        return std::nullopt;
    auto bytes = FileChoice::readAcceptedFile(key->prototype(), filePath);
    if (!bytes)
        return bytes.error();
    writeValue(PreferenceKeyValue(plist::Value(*bytes)));
    notifyChange();
    return std::nullopt;
}

void DataInstrumentController::remove() {
    writeValue({});
    notifyChange();
}

void DataInstrumentController::bindValue() {
    bind(ValueBinding::Role::value, QStringLiteral("value"), {});
}

} // namespace quorlin
