#pragma once

#include "plist/Value.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>
#include <utility>

namespace quorlin {

// A directory of manifests in the standard form and their parsed trees: the
// common ground of every source of manifests. The bundled set, a user's
// folder and the stores of updating repositories all read their manifests
// through it, so they agree on which files count.
class ManifestRepository {
public:
    // A repository always has a directory; it starts empty until reloaded.
    explicit ManifestRepository(QString standardizedManifestsDirectory);
    virtual ~ManifestRepository();
    ManifestRepository(const ManifestRepository&) = delete;
    ManifestRepository& operator=(const ManifestRepository&) = delete;

    const QString& standardizedManifestsDirectory() const { return m_standardizedManifestsDirectory; }
    // One complete manifest root per element, in the order of the directory listing.
    const QList<plist::Dictionary>& standardizedManifests() const;

    // Replaces every manifest with those now found below the directory.
    virtual void reloadManifests();
    // Reads the given files and lets each replace every manifest of its
    // domain; the new ones go to the end. A file that can't be read changes
    // nothing, so a manifest whose file vanished stays.
    virtual void reloadManifests(const QStringList& files);
    // The first manifest whose "pfm_domain" is that string; "" is the
    // general payload's domain.
    virtual std::optional<plist::Dictionary> manifest(const QString& domain) const;

    // The store this repository keeps on disk, which the removal of stale
    // stores must spare; nothing for a repository that has none.
    virtual std::optional<QString> localStorageRootDirectory() const;

    // Every file below the directory, subfolders included, whose extension
    // is exactly "plist"; hidden files and folders are skipped, and
    // symbolic links to folders aren't followed. Sorted by path, so the
    // order of manifests (and which of two like-named domains comes later)
    // is the same on every machine. Nothing for a directory that can't be listed.
    static QStringList plistFiles(const QString& directory);
    // The files that exist and hold a property list whose root is a
    // dictionary, with their trees, in the order given; a file named twice
    // is read once.
    static QList<std::pair<QString, plist::Dictionary>> readManifests(const QStringList& files);

protected:
    QList<plist::Dictionary>& mutableStandardizedManifests();
    // Leaves the first reading of the directory to the first use of its
    // manifests, for a set that is often not needed at all. Only for a
    // repository used from one thread.
    void readOnFirstUse() { m_unread = true; }

private:
    void readIfUnread() const;

    bool m_unread = false;
    const QString m_standardizedManifestsDirectory;
    QList<plist::Dictionary> m_standardizedManifests;
};

} // namespace quorlin
