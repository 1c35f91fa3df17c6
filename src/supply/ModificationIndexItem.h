#pragma once

#include "plist/Expected.h"
#include "plist/Value.h"

#include <QList>
#include <QString>

namespace quorlin {

class UpdatingManifestRepository;

// One line of a store's "modification-index.plist": which original went
// into which standardized file, and how old the original was then. Several
// originals of one domain give several items with one standardized file.
struct ModificationIndexItem {
    struct ModificationIndexItemErrors {
        // The one case: decodingError(message).
        QString decodingError;
    };

    // Absolute and cleaned; stored relative to the originals folder.
    QString originalLocation;
    // Absolute and cleaned; stored relative to the standardized folder.
    QString standardizedLocation;
    // The original's content modification date when it was processed.
    plist::Date modificationTime;

    friend bool operator==(const ModificationIndexItem&, const ModificationIndexItem&) = default;

    // The paths are stored relative to the repository's folders, so a store
    // that moves as a whole keeps its index.
    plist::Dictionary encoded(const UpdatingManifestRepository& repository) const;
    // A path that leaves its folder fails, and with it the whole index.
    static Expected<ModificationIndexItem, ModificationIndexItemErrors>
    decoded(const plist::Value& value, const UpdatingManifestRepository* repository);

    static plist::Array encodedIndex(const QList<ModificationIndexItem>& index,
                                     const UpdatingManifestRepository& repository);
    // Empty when any item fails: half an index would hide changes.
    static QList<ModificationIndexItem> decodedIndex(const plist::Value& value,
                                                     const UpdatingManifestRepository& repository);
};

} // namespace quorlin
