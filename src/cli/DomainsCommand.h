#pragma once

#include "cli/Command.h"
#include "cli/DomainSource.h"

namespace quorlin::cli {

// domains [list] [--manifests DIR] [--json]: the payload domains that the editor
// offers, or those that the manifests of a folder would give.
class DomainsCommand final : public Command {
public:
    QString name() const override { return QStringLiteral("domains"); }
    QString summary() const override;
    QString help() const override;
    int run(const QStringList& arguments, CommandStreams& streams) const override;

private:
    using Listing = DomainSource::Listing;

    static void printText(const Listing& listing, CommandStreams& streams);
    static void printJson(const Listing& listing, CommandStreams& streams);
    static QString filesWithoutDomainLine(qsizetype count);
};

} // namespace quorlin::cli
