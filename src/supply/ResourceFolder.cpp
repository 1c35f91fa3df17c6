#include "supply/ResourceFolder.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include <utility>

namespace quorlin {

ResourceFolder::ResourceFolder(QString path)
    : m_path(std::move(path)) {}

std::optional<ResourceFolder> ResourceFolder::locate() {
    ResourceFolder folder(expectedPath());
    if (!QFileInfo(folder.manifestsDirectory()).isDir())
        return std::nullopt;
    return folder;
}

QString ResourceFolder::expectedPath() {
    return QDir::cleanPath(QCoreApplication::applicationDirPath() +
                           QStringLiteral("/../share/quorlin-profile-editor"));
}

QString ResourceFolder::missingMessage() {
    return QStringLiteral("The application's resources are missing: no folder \"Manifests\" in %1. "
                          "Build the program again or reinstall it.")
        .arg(expectedPath());
}

QString ResourceFolder::manifestsDirectory() const {
    return QDir(m_path).filePath(QStringLiteral("Manifests"));
}

QString ResourceFolder::manifestSupportDirectory() const {
    return QDir(m_path).filePath(QStringLiteral("Manifest Support"));
}

QString ResourceFolder::imagePath(const QString& name) const {
    return QDir(m_path).filePath(QStringLiteral("Images/%1.png").arg(name));
}

} // namespace quorlin
