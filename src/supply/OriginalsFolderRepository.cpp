#include "supply/OriginalsFolderRepository.h"

#include <QFileInfo>

namespace quorlin {

std::unique_ptr<OriginalsFolderRepository>
OriginalsFolderRepository::make(const QString& root, const QString& originals,
                                std::optional<StandardizationSettings> settings) {
    std::unique_ptr<OriginalsFolderRepository> repository(
        new OriginalsFolderRepository(root, originals, std::move(settings)));
    if (!repository->openStore())
        return nullptr;
    return repository;
}

void OriginalsFolderRepository::checkForUpdates() {
    status().setIsCheckingForUpdates(true);
    reloadManifests(processOriginals());
    status().setIsCheckingForUpdates(false);
}

bool OriginalsFolderRepository::isProfileManifestsRepositoryValue() {
    const auto manifests = resolveOriginal(QStringLiteral("Manifests"));
    return manifests && QFileInfo(*manifests).isDir();
}

} // namespace quorlin
