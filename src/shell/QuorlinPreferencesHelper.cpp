#include "shell/QuorlinPreferencesHelper.h"

#include "plist/PlistReader.h"
#include "supply/FolderEvents.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

namespace quorlin {

QuorlinPreferencesHelper::QuorlinPreferencesHelper(QString preferencesFilePath, QObject* parent)
    : QObject(parent)
    , m_preferencesFilePath(std::move(preferencesFilePath))
    , m_quorlinLibraryURL(libraryURL(m_preferencesFilePath)) {
    if (!m_quorlinLibraryURL)
        return;
    // The folder rather than the file: the product replaces its file on
    // each write, and a watch on the old file would see nothing after.
    FolderEvents::startWatching({QFileInfo(m_preferencesFilePath).absolutePath()}, this,
                                [this](const FolderEventsEvent&) { readAgain(); });
}

QuorlinPreferencesHelper::~QuorlinPreferencesHelper() {
    FolderEvents::stopWatching(this);
}

QString QuorlinPreferencesHelper::standardPreferencesFilePath() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/quorlin/Prefs/Prefs.plist");
}

std::optional<QString> QuorlinPreferencesHelper::libraryURL(const QString& preferencesFilePath) {
    if (preferencesFilePath.isEmpty())
        return std::nullopt;
    QFile file(preferencesFilePath);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const auto read = plist::PlistReader::read(file.readAll());
    const plist::Dictionary* preferences = read ? read->root.dictionary() : nullptr;
    const auto libraryPath = preferences ? preferences->string(QStringLiteral("LibraryPath")) : std::nullopt;
    if (!libraryPath)
        return std::nullopt;
    const QString profiles = QDir(*libraryPath).filePath(QStringLiteral("Profiles"));
    if (!QFileInfo(profiles).isDir())
        return std::nullopt;
    return QDir::cleanPath(profiles);
}

void QuorlinPreferencesHelper::readAgain() {
    auto now = libraryURL(m_preferencesFilePath);
    if (now == m_quorlinLibraryURL)
        return;
    m_quorlinLibraryURL = std::move(now);
    Q_EMIT quorlinLibraryURLChanged();
}

} // namespace quorlin
