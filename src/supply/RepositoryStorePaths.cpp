#include "supply/RepositoryStorePaths.h"

#include <QCryptographicHash>
#include <QDir>
#include <QStandardPaths>
#include <QStringList>
#include <QUrl>

namespace quorlin {

namespace {

const QString kStoreFolderName = QStringLiteral("manifest-repositories");

QStringList nonEmptyPathComponents(const QUrl& url) {
    return url.path().split(u'/', Qt::SkipEmptyParts);
}

bool hasForbiddenCharacter(const QString& branch) {
    static const QString forbidden = QStringLiteral(" ~^:?*[\\");
    for (const QChar c : branch) {
        if (c.unicode() < 0x20 || c.unicode() == 0x7F || forbidden.contains(c))
            return true;
    }
    return false;
}

bool hasForbiddenComponent(const QString& branch) {
    for (const QString& component : branch.split(u'/')) {
        if (component.endsWith(QStringLiteral(".lock")) || component.startsWith(u'.'))
            return true;
    }
    return false;
}

} // namespace

QString RepositoryStorePaths::applicationDataFolder() {
    return QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
}

QString RepositoryStorePaths::storeRoot() {
    return QDir(applicationDataFolder()).filePath(kStoreFolderName);
}

std::optional<QString> RepositoryStorePaths::gitHubStorageRoot() {
    if (applicationDataFolder().isEmpty())
        return std::nullopt;
    return QDir(storeRoot()).filePath(QStringLiteral("github"));
}

std::optional<QString> RepositoryStorePaths::localStorageRoot() {
    if (applicationDataFolder().isEmpty())
        return std::nullopt;
    return QDir(storeRoot()).filePath(QStringLiteral("local"));
}

std::optional<QString> RepositoryStorePaths::storageDirectoryForRepositoryAddress(const QString& address,
                                                                                  const QString& branch) {
    const auto root = gitHubStorageRoot();
    const QUrl url(address, QUrl::StrictMode);
    if (!root || !url.isValid() || !branchIsValid(branch))
        return std::nullopt;
    const QStringList components = nonEmptyPathComponents(url) << branch;
    return confinedBelow(*root, components.join(u'/'));
}

std::optional<QString> RepositoryStorePaths::storageDirectoryForLocalFolder(const QString& folderPath) {
    const auto root = localStorageRoot();
    if (!root || folderPath.isEmpty())
        return std::nullopt;
    const QByteArray digest = QCryptographicHash::hash(folderPath.toUtf8(), QCryptographicHash::Sha1);
    return confinedBelow(*root, QString::fromLatin1(digest.toHex()));
}

bool RepositoryStorePaths::addressIsValid(const QString& address) {
    const QUrl url(address, QUrl::StrictMode);
    if (!url.isValid())
        return false;
    const QString scheme = url.scheme().toLower();
    if (scheme != QStringLiteral("https") && scheme != QStringLiteral("http"))
        return false;
    const QString host = url.host().toLower();
    if (host != QStringLiteral("github.com") && host != QStringLiteral("www.github.com"))
        return false;
    // "/", owner and repository: the root is implied by the leading slash.
    return url.path().startsWith(u'/') && nonEmptyPathComponents(url).size() == 2;
}

bool RepositoryStorePaths::branchIsValid(const QString& branch) {
    if (branch.isEmpty() || branch == QStringLiteral("@"))
        return false;
    if (branch.startsWith(u'/') || branch.endsWith(u'/') || branch.contains(QStringLiteral("//")))
        return false;
    if (branch.endsWith(u'.') || branch.contains(QStringLiteral("..")))
        return false;
    return !hasForbiddenCharacter(branch) && !hasForbiddenComponent(branch);
}

bool RepositoryStorePaths::isInside(const QString& path, const QString& root) {
    const QString cleanRoot = QDir::cleanPath(root);
    return !cleanRoot.isEmpty() && QDir::cleanPath(path).startsWith(cleanRoot + u'/');
}

std::optional<QString> RepositoryStorePaths::confinedBelow(const QString& root, const QString& relativePath) {
    // Cleaning resolves "..", so a crafted owner or repository name that
    // climbs out of the root is caught here rather than by every caller.
    const QString directory = QDir::cleanPath(root + u'/' + relativePath);
    if (!isInside(directory, root))
        return std::nullopt;
    return directory;
}

} // namespace quorlin
