#pragma once

#include "plist/Value.h"
#include "supply/ManifestFinding.h"

#include <QList>

namespace quorlin {

// Finds what a manifest says that can't be right: values of another type
// than their key's, defaults outside their own limits, patterns that don't
// compile, rules that can never hold, keys that can't be read, typos of
// "pfm_" words and availability a key can't have inside its parent. Reads
// the raw dialect, third-party manifests and the standard form alike, since
// users write all three and the reader would drop such keys silently.
class ManifestLinter {
public:
    static constexpr int maximumDepth = 64;

    // Findings in the order of the manifest's keys, depth first.
    static QList<ManifestFinding> lint(const plist::Dictionary& manifest);
};

} // namespace quorlin
