#pragma once

#include <QString>

namespace quorlin {

// Whether a folder the user chose can serve as the local manifest
// repository, before it is stored.
class RepositoryFolderCheck {
public:
    enum class Result { valid = 0, tooManyPlistFiles = 1, invalid = 2 };

    // Scanning a folder this large on every start takes long enough that the
    // user should confirm it.
    static constexpr int plistFileLimit = 2000;

    // The folder exists and holds the general payload's manifest, among no
    // more than `limit` plist files.
    static Result isManifestRepositoryFolder(const QString& folder, int limit = plistFileLimit);
    // A readable dictionary whose "pfm_domain" names the general payload,
    // in the program's own form or the public dialect's.
    static bool isGeneralManifest(const QString& file);
};

} // namespace quorlin
