#pragma once

#include "plist/Expected.h"
#include "supply/PFMDomainManager.h"

#include <QString>

#include <memory>
#include <optional>

namespace quorlin::cli {

// Where the commands take their domains from: those the editor offers under
// the current settings, or those that the manifests of a folder give.
class DomainSource {
public:
    using DomainList = PFMDomainManager::DomainList;

    struct Listing {
        DomainList domains;
        // Only for a folder: its manifest files that gave no domain.
        std::optional<qsizetype> filesWithoutDomain;
    };

    // The folder's when one is given, else those in force. Errors name the
    // folder or the missing resources.
    static Expected<Listing, QString> load(const std::optional<QString>& folder);
    static Expected<Listing, QString> inForce();
    static Expected<Listing, QString> inFolder(const QString& folder);

    // The first domain whose domain string is exactly `domainString`.
    static std::shared_ptr<const PFMDomain> find(const DomainList& domains, const QString& domainString);
};

} // namespace quorlin::cli
