#pragma once

#include <QString>

#include <optional>

namespace quorlin {

// A folder named in the repository settings that can't be used. The path is
// absent when the setting didn't even name a folder.
struct DomainManagerError {
    enum class Kind {
        localManifestRepositoryDirectoryNoLongerAvailable,
        overrideManifestRepositoryDirectoryNoLongerAvailable,
    };

    Kind kind = Kind::localManifestRepositoryDirectoryNoLongerAvailable;
    std::optional<QString> path;

    friend bool operator==(const DomainManagerError&, const DomainManagerError&) = default;
};

} // namespace quorlin
