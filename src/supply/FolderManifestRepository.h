#pragma once

#include "supply/ManifestRepository.h"

#include <QString>

namespace quorlin {

// A folder of the user's own manifests, already in the standard form, read
// where they lie: no store, no standardization. It serves the user manifest
// folder, whose domains replace like-named ones of the repository in force.
class FolderManifestRepository final : public ManifestRepository {
public:
    // Reads the folder at once, so the repository is ready when made.
    explicit FolderManifestRepository(const QString& folder);
};

} // namespace quorlin
