#include "cli/DomainsCommand.h"

#include "cli/CommandLineTool.h"
#include "cli/CommonOptions.h"
#include "cli/ExitCode.h"
#include "cli/ParsedArguments.h"
#include "schema/PFMSupportedPlatforms.h"
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace quorlin::cli {

namespace {

QStringList platformNames(const PFMDomain& domain) {
    QStringList names;
    if (const auto& platforms = domain.supportedPlatforms()) {
        for (const SupportedPlatform& platform : platforms->platforms())
            names.append(PFMSupportedPlatforms::displayName(platform.model));
    }
    return names;
}

// The general domain's string is empty; a blank field would read as a missing one.
QString displayedDomain(const PFMDomain& domain) {
    return domain.domainString().isEmpty() ? QStringLiteral("\"\"") : domain.domainString();
}

} // namespace

QString DomainsCommand::summary() const {
    return QStringLiteral("List the payload domains of the manifests in force or in a folder");
}

QString DomainsCommand::help() const {
    return QStringLiteral(
        "Usage: quorlin-profile domains [list] [--manifests DIR] [--json]\n"
        "       quorlin-profile domains show DOMAIN [--manifests DIR] [--json]\n"
        "\n"
        "Lists the payload domains that the editor offers under the current settings:\n"
        "those of the manifest repository in force, with the domains of a user manifest\n"
        "folder in place of like-named ones. With --manifests, lists instead the domains\n"
        "that the standard-form manifests in DIR and its subfolders give.\n"
        "\"domains show DOMAIN\" lists the keys of one domain; see its own --help.\n"
        "\n"
        "One line per domain, with tabs between: the domain (\"\" for the general settings\n"
        "of a profile), its title, its category, its number of keys and its platforms.\n"
        "With --manifests a last line counts the \".plist\" files that gave no domain.\n"
        "\n"
        "  --manifests DIR  read the manifests in DIR instead of those in force\n"
        "  --json           print a JSON array instead, one object per domain with\n"
        "                   domain, title, category, platforms and keyCount; with\n"
        "                   --manifests the count goes to standard error\n"
        "\n"
        "Exit status: 0 when listed, 2 for a usage error, a folder that can't be read\n"
        "or resources of the program that are missing.");
}

int DomainsCommand::run(const QStringList& arguments, CommandStreams& streams) const {
    const auto parsed =
        ParsedArguments::parse(arguments, ParsedArguments::Options({kManifestsOption}, {kJsonFlag}));
    if (!parsed)
        return usageError(streams, parsed.error());
    // "domains list" says the same as "domains"; "domains show" is a command of its own.
    QStringList operands = parsed->operands();
    if (!operands.isEmpty() && operands.first() == QStringLiteral("list"))
        operands.removeFirst();
    if (!operands.isEmpty())
        return usageError(streams, QStringLiteral("unexpected argument '%1'").arg(operands.first()));

    const bool asJson = parsed->hasFlag(kJsonFlag);
    const auto listing = DomainSource::load(parsed->value(kManifestsOption));
    if (!listing) {
        streams.printError(
            QStringLiteral("%1 %2: %3").arg(CommandLineTool::programName(), name(), listing.error()));
        return ExitCode::usageOrInputError;
    }
    if (asJson)
        printJson(*listing, streams);
    else
        printText(*listing, streams);
    return ExitCode::success;
}

void DomainsCommand::printText(const Listing& listing, CommandStreams& streams) {
    for (const auto& domain : listing.domains) {
        const QString platforms = platformNames(*domain).join(u',');
        streams.print(QStringList{displayedDomain(*domain), domain->title(),
                                  PFMDomain::rawValue(domain->domainCategory()),
                                  QString::number(domain->keyPrototypes().size()),
                                  platforms.isEmpty() ? QStringLiteral("-") : platforms}
                          .join(u'\t'));
    }
    if (listing.filesWithoutDomain)
        streams.print(filesWithoutDomainLine(*listing.filesWithoutDomain));
}

void DomainsCommand::printJson(const Listing& listing, CommandStreams& streams) {
    QJsonArray array;
    for (const auto& domain : listing.domains) {
        array.append(QJsonObject{
            {QStringLiteral("domain"), domain->domainString()},
            {QStringLiteral("title"), domain->title()},
            {QStringLiteral("category"), PFMDomain::rawValue(domain->domainCategory())},
            {QStringLiteral("platforms"), QJsonArray::fromStringList(platformNames(*domain))},
            {QStringLiteral("keyCount"), qint64(domain->keyPrototypes().size())},
        });
    }
    streams.writeOutput(QJsonDocument(array).toJson(QJsonDocument::Indented));
    // Standard output holds the array alone, so programs can parse it whole.
    if (listing.filesWithoutDomain)
        streams.printError(filesWithoutDomainLine(*listing.filesWithoutDomain));
}

QString DomainsCommand::filesWithoutDomainLine(qsizetype count) {
    return count == 1 ? QStringLiteral("1 file gave no domain")
                      : QStringLiteral("%1 files gave no domain").arg(count);
}

} // namespace quorlin::cli
