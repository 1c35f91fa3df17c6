#pragma once

#include "cli/Command.h"
#include "plist/Expected.h"
#include "supply/PFMDomainManager.h"

#include <optional>

namespace quorlin::cli {

// domains [--manifests DIR] [--json]: the payload domains that the editor
// offers, or those that the manifests of a folder would give.
class DomainsCommand final : public Command {
public:
    QString name() const override { return QStringLiteral("domains"); }
    QString summary() const override;
    QString help() const override;
    int run(const QStringList& arguments, CommandStreams& streams) const override;

private:
    struct Listing {
        PFMDomainManager::DomainList domains;
        // Only for a folder: its manifest files that gave no domain.
        std::optional<qsizetype> filesWithoutDomain;
    };

    static Expected<Listing, QString> domainsInForce();
    static Expected<Listing, QString> domainsInFolder(const QString& folder);
    static void printText(const Listing& listing, CommandStreams& streams);
    static void printJson(const Listing& listing, CommandStreams& streams);
    static QString filesWithoutDomainLine(qsizetype count);
};

} // namespace quorlin::cli
