#include "supply/FolderManifestRepository.h"

namespace quorlin {

FolderManifestRepository::FolderManifestRepository(const QString& folder)
    : ManifestRepository(folder) {
    reloadManifests();
}

} // namespace quorlin
