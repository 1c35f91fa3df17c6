#pragma once

#include "supply/UpdatingManifestRepository.h"

#include <QString>

#include <memory>
#include <optional>

namespace quorlin {

// A store over a plain folder of original manifests, refreshed when asked:
// a clone of the ProfileManifests project or any folder of raw or
// standard-form manifests. What the build and the command line standardize
// with; it watches nothing.
class OriginalsFolderRepository final : public UpdatingManifestRepository {
public:
    // The store in root, brought up to date with the folder; nothing when
    // the store's folders can't be made.
    static std::unique_ptr<OriginalsFolderRepository> make(const QString& root, const QString& originals,
                                                           std::optional<StandardizationSettings> settings);

    // Refreshes at once, on the calling thread, and reads what was written.
    void checkForUpdates() override;

protected:
    // The project's layout is told by its "Manifests" folder.
    bool isProfileManifestsRepositoryValue() override;

private:
    using UpdatingManifestRepository::UpdatingManifestRepository;
};

} // namespace quorlin
