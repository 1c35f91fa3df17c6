#pragma once

#include <QString>

namespace quorlin {

class UserDefaults;

// The repository settings as the preferences edit them: read from the
// defaults, changed control by control, compared with what is stored and
// written back only once verified.
struct ManifestRepositorySettings {
    QString type;
    QString onlineAddress;
    QString onlineBranch;
    // Changes how every manifest is standardized, so it is verified and
    // stored with the repository it applies to.
    bool maximizeNonStandardManifestCompatibility = true;
    // Folders named by the bookmarks; empty when none is set.
    QString localRepositoryPath;
    QString userManifestFolder;

    static ManifestRepositorySettings read(const UserDefaults& defaults);
    // Writes every field; an empty folder removes its bookmark.
    void store(UserDefaults& defaults) const;

    bool isOnline() const;
    bool isLocal() const;
    // False only for the bundled manifests or the default online repository.
    bool selectedRepositoryIsNonStandard() const;

    bool operator==(const ManifestRepositorySettings&) const = default;
};

} // namespace quorlin
