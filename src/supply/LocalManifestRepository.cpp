#include "supply/LocalManifestRepository.h"

#include "supply/FolderEvents.h"
#include "supply/StoreFile.h"

#include <QFileInfo>
#include <QPointer>

namespace quorlin {

std::unique_ptr<LocalManifestRepository>
LocalManifestRepository::make(const QString& storage, const QString& folder,
                              std::optional<StandardizationSettings> settings) {
    if (!QFileInfo(folder).isDir())
        return nullptr;
    std::unique_ptr<LocalManifestRepository> repository(
        new LocalManifestRepository(storage, folder, std::move(settings)));
    if (!repository->openStore() || !repository->startWatching())
        return nullptr;
    return repository;
}

LocalManifestRepository::~LocalManifestRepository() {
    FolderEvents::stopWatching(this);
}

void LocalManifestRepository::checkForUpdates() {
    m_isRefreshScheduled = false;
    status().setIsCheckingForUpdates(true);
    reloadManifests(processOriginals());
    status().setIsCheckingForUpdates(false);
}

bool LocalManifestRepository::isProfileManifestsRepositoryValue() {
    const auto index = resolveOriginal(QStringLiteral("Manifests/index"));
    if (!index)
        return false;
    const auto root = StoreFile::read(*index);
    return root && root->dictionary();
}

bool LocalManifestRepository::startWatching() {
    QPointer<QObject> context = m_refreshContext.get();
    const auto started = FolderEvents::startWatching({originalManifestsDirectory()}, this,
                                                     [this, context](const FolderEventsEvent& event) {
                                                         if (context && FolderEvents::isContentChange(event))
                                                             scheduleRefresh();
                                                     });
    return started.hasValue();
}

void LocalManifestRepository::scheduleRefresh() {
    // A burst of events (a folder copied in, an editor's safe save) needs
    // one refresh after it, not one per event: the later ones would find
    // nothing left to do.
    if (m_isRefreshScheduled)
        return;
    m_isRefreshScheduled = true;
    QMetaObject::invokeMethod(
        m_refreshContext.get(), [this] { checkForUpdates(); }, Qt::QueuedConnection);
}

} // namespace quorlin
