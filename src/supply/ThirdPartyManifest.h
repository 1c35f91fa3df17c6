#pragma once

#include "plist/Value.h"
#include "supply/SegmentGroup.h"

#include <QList>
#include <QStringList>

namespace quorlin {

// Converts a manifest of the public ProfileManifests dialect into the
// program's own vocabulary: dialect keys become "pfm_quorlin_*" keys, keys the
// reader doesn't know are dropped, and segmented controls become groups. A
// pure function of the dictionary.
class ThirdPartyManifest {
public:
    static constexpr int maximumDepth = 64;

    // Presence of a detection key alone decides, whatever its value.
    static bool isThirdParty(const plist::Dictionary& manifest);
    static plist::Dictionary convert(const plist::Dictionary& manifest);
    // The key level, recursively; `platforms` are those the keys inherit.
    static plist::Array convertKeys(const plist::Array& keys, const QStringList& platforms, int depth = 0);
    static QList<SegmentGroup> segmentGroups(const QList<plist::Dictionary>& keys);
    // Nests groups of controls shown inside other groups after their parent,
    // prefixes their names with the parent's, and drops groups left empty.
    static QList<SegmentGroup> resolveSegmentGroups(const QList<SegmentGroup>& groups);
    // File extensions for "pfm_allowed_file_types": plain extensions and
    // uniform type identifiers mixed, in order.
    static QStringList allowedFileExtensions(const plist::Array& fileTypes);
    static const QStringList& defaultPlatforms();
};

} // namespace quorlin
