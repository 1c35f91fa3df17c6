#pragma once

#include "supply/DomainManagerError.h"
#include "supply/ManifestRepository.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>

namespace quorlin {

// What one reading of the repository settings yields: the repositories to
// put in force, the folders opened for them, and the errors for the user.
struct LoadedRepositories {
    // The online repository the settings name, once its address and branch
    // have passed the rules, with the store that belongs to it.
    struct Online {
        QString address;
        QString branch;
        QString storageDirectory;
        friend bool operator==(const Online&, const Online&) = default;
    };
    // The local repository folder the settings name, found and readable,
    // with the store that belongs to it.
    struct LocalFolder {
        QString folder;
        QString storageDirectory;
        friend bool operator==(const LocalFolder&, const LocalFolder&) = default;
    };

    // Absent: the bundled repository serves.
    std::shared_ptr<ManifestRepository> mainRepository;
    // The user manifest folder, whose domains replace like-named ones.
    std::shared_ptr<ManifestRepository> overrideRepository;
    QStringList bookmarks;
    QList<DomainManagerError> errors;
    std::optional<Online> online;
    std::optional<LocalFolder> local;
};

} // namespace quorlin
