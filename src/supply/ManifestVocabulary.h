#pragma once

#include <QString>

#include <optional>

namespace quorlin {

// The "pfm_" words a manifest may use, in any of its forms: the raw dialect of
// the public ProfileManifests project, the program's own "pfm_quorlin_*" and
// "pfmx_*" words, and those of conditional rules. A word outside it is most
// likely a typo, which the reader would drop without a word.
class ManifestVocabulary {
public:
    // True for a key that manifests reserve: one beginning with "pfm".
    static bool isManifestWord(const QString& key);
    static bool isKnown(const QString& key);
    // The known word nearest by edit distance, when it is near enough to be
    // what was meant.
    static std::optional<QString> closestKnown(const QString& key);
};

} // namespace quorlin
