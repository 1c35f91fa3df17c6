#include "fields/FileChoice.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace quorlin {

QString FileChoice::incompatibleTitle() {
    return QStringLiteral("File incompatible");
}

QString FileChoice::incompatibleText() {
    return QStringLiteral("The selected file is not the right type for this configuration section.");
}

bool FileChoice::hasAllowedExtension(const PFMKeyPrototype& prototype, const QString& filePath) {
    const auto& extensions = prototype.allowedFileExtensions();
    if (!extensions || extensions->isEmpty())
        return true;
    return extensions->contains(QFileInfo(filePath).suffix(), Qt::CaseInsensitive);
}

bool FileChoice::matchesSignature(const PFMKeyPrototype& prototype, const QByteArray& bytes) {
    const auto& signatures = prototype.allowedDataSignatures();
    if (!signatures)
        return true;
    return std::any_of(signatures->begin(), signatures->end(),
                       [&](const QByteArray& signature) { return bytes.startsWith(signature); });
}

Expected<QByteArray, InstrumentAlert> FileChoice::readAcceptedFile(const PFMKeyPrototype& prototype,
                                                                   const QString& filePath) {
    const InstrumentAlert incompatible{incompatibleTitle(), incompatibleText()};
    if (!hasAllowedExtension(prototype, filePath))
        return fail(incompatible);
    QFile file(filePath);
    if (!file.open(QIODevice::ReadOnly))
        return fail(InstrumentAlert{
            incompatibleTitle(),
            QStringLiteral("The selected file could not be loaded because of a system error.")});
    const QByteArray bytes = file.readAll();
    if (!matchesSignature(prototype, bytes))
        return fail(incompatible);
    return bytes;
}

QString FileChoice::chooseButtonTitle(bool hasValue) {
    return hasValue ? QStringLiteral("Replace...") : QStringLiteral("Choose...");
}

int FileChoice::buttonVisibilityPriority(const PFMKeyPrototype& prototype) {
    return prototype.userEditable() ? 1000 : 0;
}

} // namespace quorlin
