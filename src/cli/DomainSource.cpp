#include "cli/DomainSource.h"

#include "cli/ToolSettings.h"
#include "supply/ManifestRepository.h"
#include "supply/ResourceFolder.h"

#include <QFileInfo>

namespace quorlin::cli {

Expected<DomainSource::Listing, QString> DomainSource::load(const std::optional<QString>& folder) {
    return folder ? inFolder(*folder) : inForce();
}

Expected<DomainSource::Listing, QString> DomainSource::inForce() {
    // The shared manager ends the process without its resources; a command
    // should say so and exit with its own status instead.
    if (!ResourceFolder::locate())
        return fail(ResourceFolder::missingMessage());
    ToolSettings::defaults();
    return Listing{PFMDomainManager::shared().domains(), std::nullopt};
}

Expected<DomainSource::Listing, QString> DomainSource::inFolder(const QString& folder) {
    const QFileInfo info(folder);
    if (!info.isDir())
        return fail(folder + QStringLiteral(": not a folder"));
    if (!info.isReadable() || !info.isExecutable())
        return fail(folder + QStringLiteral(": cannot read the folder"));

    const QStringList files = ManifestRepository::plistFiles(folder);
    Listing listing;
    for (const auto& [path, manifest] : ManifestRepository::readManifests(files)) {
        if (auto domain = PFMDomain::make(manifest))
            listing.domains.append(std::move(domain));
    }
    listing.filesWithoutDomain = files.size() - listing.domains.size();
    return listing;
}

std::shared_ptr<const PFMDomain> DomainSource::find(const DomainList& domains, const QString& domainString) {
    for (const auto& domain : domains) {
        if (domain->domainString() == domainString)
            return domain;
    }
    return nullptr;
}

} // namespace quorlin::cli
