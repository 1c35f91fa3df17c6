#pragma once

#include "supply/UpdatingManifestRepository.h"

#include <QObject>
#include <QString>

#include <memory>
#include <optional>

namespace quorlin {

// A folder of the user's taken as originals and watched: whatever changes
// there is standardized at once, on the main thread, and reported in the
// status like any update. It serves as the main repository of type
// "local" and as the user manifest folder beside an online one.
class LocalManifestRepository final : public UpdatingManifestRepository {
public:
    // The store in storage, brought up to date with the folder, and the
    // watch started; nothing when either fails.
    static std::unique_ptr<LocalManifestRepository> make(const QString& storage, const QString& folder,
                                                         std::optional<StandardizationSettings> settings);
    ~LocalManifestRepository() override;

    // Refreshes at once on the calling thread.
    void checkForUpdates() override;

protected:
    // A clone of ProfileManifests is told by a readable "Manifests/index".
    bool isProfileManifestsRepositoryValue() override;

private:
    using UpdatingManifestRepository::UpdatingManifestRepository;

    bool startWatching();
    void scheduleRefresh();

    // Queued refreshes die with the repository, together with this object.
    std::unique_ptr<QObject> m_refreshContext = std::make_unique<QObject>();
    bool m_isRefreshScheduled = false;
};

} // namespace quorlin
