#include "supply/StaleStoreRemover.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace quorlin {

namespace {

bool holdsAny(const QString& directory, const QStringList& kept) {
    const QString prefix = directory + u'/';
    return std::any_of(kept.cbegin(), kept.cend(),
                       [&](const QString& path) { return path.startsWith(prefix); });
}

} // namespace

void StaleStoreRemover::removeStaleStores(const QStringList& roots, const QStringList& keptDirectories) {
    QStringList kept;
    for (const QString& directory : keptDirectories)
        kept.append(QDir::cleanPath(directory));
    for (const QString& root : roots) {
        if (!root.isEmpty())
            removeStaleChildren(QDir::cleanPath(root), kept);
    }
}

void StaleStoreRemover::removeStaleChildren(const QString& directory, const QStringList& kept) {
    const QFileInfoList children = QDir(directory).entryInfoList(
        QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
    for (const QFileInfo& child : children) {
        const QString path = QDir::cleanPath(child.filePath());
        if (kept.contains(path))
            continue;
        // A link is never walked: what it points to is not ours to judge.
        if (child.isDir() && !child.isSymLink() && holdsAny(path, kept))
            removeStaleChildren(path, kept);
        else
            remove(path);
    }
}

void StaleStoreRemover::remove(const QString& path) {
    const QFileInfo entry(path);
    // Removing through a link to a folder would empty the folder it points to.
    if (entry.isDir() && !entry.isSymLink())
        QDir(path).removeRecursively();
    else
        QFile::remove(path);
}

} // namespace quorlin
