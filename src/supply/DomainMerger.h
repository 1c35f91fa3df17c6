#pragma once

#include "plist/Value.h"

#include <QList>
#include <QSet>
#include <QString>

namespace quorlin {

// Folds several raw manifests of one domain (typically one per platform) into
// one, remembering on each key the platforms whose manifests carried it. A key
// valid on every platform of its parent ends without a list: in the standard
// form "pfm_platforms" always means a restriction.
class DomainMerger {
public:
    using PlatformSet = QSet<QString>;

    // Key trees deeper than this are cut off rather than followed, so hostile
    // manifests can neither exhaust the stack nor take forever.
    static constexpr int maximumDepth = 64;

    // The manifests in their sorted order; for plain manifest keys the last
    // one wins.
    static plist::Dictionary merge(const QList<plist::Dictionary>& manifests);

    // Merges the keys of one manifest's subkey array into those already
    // merged. Keys are matched by "pfm_name"; unnamed keys only by position
    // inside an array key whose subkey arrays have equal counts.
    static void mergeSubkeys(plist::Array& existing, const plist::Array& incoming,
                             const PlatformSet& platforms, bool parentIsArray, int depth = 0);
    // Merges `incoming` from a later manifest into `merged`, already in the result.
    static void mergeKey(plist::Dictionary& merged, const plist::Dictionary& incoming,
                         const PlatformSet& platforms, int depth = 0);
    // Works out and writes down the platforms of one key and its subkeys;
    // returns those of the key itself.
    static PlatformSet applyPlatforms(plist::Dictionary& key, const PlatformSet& platforms);
    // The same for every key of a subkey array and, below it, each child with
    // its parent's own platforms.
    static void applyPlatforms(plist::Array& keys, const PlatformSet& platforms, int depth = 0);
    // Removes every list equal to the platforms of the key's parent.
    static void prunePlatforms(plist::Array& keys, const PlatformSet& parentPlatforms, int depth = 0);

    static plist::Array sortedPlatformArray(const PlatformSet& platforms);
};

} // namespace quorlin
