#include "shell/RepositoryFolderCheck.h"

#include "supply/ManifestRepository.h"
#include "supply/ThirdPartyManifest.h"

#include <QFileInfo>

namespace quorlin {

RepositoryFolderCheck::Result RepositoryFolderCheck::isManifestRepositoryFolder(const QString& folder,
                                                                                int limit) {
    if (!QFileInfo(folder).isDir())
        return Result::invalid;
    const QStringList files = ManifestRepository::plistFiles(folder);
    if (files.size() > limit)
        return Result::tooManyPlistFiles;
    for (const QString& file : files) {
        if (isGeneralManifest(file))
            return Result::valid;
    }
    return Result::invalid;
}

bool RepositoryFolderCheck::isGeneralManifest(const QString& file) {
    const auto manifests = ManifestRepository::readManifests({file});
    if (manifests.isEmpty())
        return false;
    const plist::Dictionary& manifest = manifests.first().second;
    const auto domain = manifest.string(QStringLiteral("pfm_domain"));
    if (!domain)
        return false;
    return domain->isEmpty() || (ThirdPartyManifest::isThirdParty(manifest) && *domain == u"Configuration");
}

} // namespace quorlin
