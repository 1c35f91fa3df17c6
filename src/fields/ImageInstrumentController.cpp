#include "fields/ImageInstrumentController.h"

#include "fields/FileChoice.h"

#include <QImage>

namespace quorlin {

QString ImageInstrumentController::chooseButtonTitle() const {
    const auto& key = representedPreferenceKey();
    const plist::Value* stored = key ? key->value().plistValue() : nullptr;
    return FileChoice::chooseButtonTitle(stored && stored->isData());
}

int ImageInstrumentController::buttonVisibilityPriority() const {
    const auto& key = representedPreferenceKey();
    return key ? FileChoice::buttonVisibilityPriority(key->prototype()) : 0;
}

bool ImageInstrumentController::isReadableImage(const QByteArray& bytes) {
    return !QImage::fromData(bytes).isNull();
}

std::optional<InstrumentAlert> ImageInstrumentController::chooseFile(const QString& filePath) {
    const auto& key = representedPreferenceKey();
    if (!key)
        return std::nullopt;
    auto bytes = FileChoice::readAcceptedFile(key->prototype(), filePath);
    if (!bytes)
        return bytes.error();
    return dropImageData(*bytes);
}

std::optional<InstrumentAlert> ImageInstrumentController::dropImageData(const QByteArray& bytes) {
    if (!isReadableImage(bytes))
        return InstrumentAlert{FileChoice::incompatibleTitle(), FileChoice::incompatibleText()};
    storeImage(bytes);
    return std::nullopt;
}

void ImageInstrumentController::remove() {
    writeValue({});
    notifyChange();
}

void ImageInstrumentController::storeImage(const QByteArray& bytes) {
    m_suspendValueObservation = true;
    if (const auto binding = valueBinding())
        binding->controlValueDidChange(plist::Value(bytes));
    else
        writeValue(PreferenceKeyValue(plist::Value(bytes)));
    m_suspendValueObservation = false;
    notifyChange();
}

void ImageInstrumentController::bindValue() {
    bind(ValueBinding::Role::value, QStringLiteral("value"), {});
}

} // namespace quorlin
