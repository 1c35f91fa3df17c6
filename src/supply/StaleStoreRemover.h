#pragma once

#include <QString>
#include <QStringList>

namespace quorlin {

// Clears the repository stores that no repository in use owns any more,
// e.g. after the user moved to another branch or folder. Stores are copies
// that can be fetched or made again, so anything not known to be in use goes.
class StaleStoreRemover {
public:
    // Walks each root's direct children: a kept directory stays, a directory
    // that holds a kept one is walked in the same way, anything else is
    // removed. Roots themselves are never removed; failures are skipped.
    static void removeStaleStores(const QStringList& roots, const QStringList& keptDirectories);

private:
    static void removeStaleChildren(const QString& directory, const QStringList& kept);
    static void remove(const QString& path);
};

} // namespace quorlin
