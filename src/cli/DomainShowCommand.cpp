#include "cli/DomainShowCommand.h"

#include "cli/CommandLineTool.h"
#include "cli/CommonOptions.h"
#include "cli/DomainSource.h"
#include "cli/ExitCode.h"
#include "cli/ParsedArguments.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace quorlin::cli {

namespace {

using Stage = PFMSupportedPlatforms::LifeCycleStage;

// The words of the stages in a listing: "introduced", "deprecated", "removed".
QString stageWord(Stage stage) {
    switch (stage) {
    case Stage::introduction:
        return QStringLiteral("introduced");
    case Stage::deprecation:
        return QStringLiteral("deprecated");
    case Stage::removal:
        return QStringLiteral("removed");
    }
    return {};
}

// Array items have no name of their own.
QString keyName(const PFMKeyPrototype& key) {
    return key.name().value_or(QStringLiteral("(item)"));
}

} // namespace

QString DomainShowCommand::summary() const {
    return QStringLiteral("List the keys of one payload domain with their types and platforms");
}

QString DomainShowCommand::help() const {
    return QStringLiteral("Usage: quorlin-profile domains show DOMAIN [--manifests DIR] [--json]\n"
                          "\n"
                          "Lists the keys of the payload domain DOMAIN (\"\" for the general settings of\n"
                          "a profile) as the editor offers them, subkeys indented below their key.\n"
                          "One line per key, with tabs between: the name (\"(item)\" for the items of\n"
                          "an array), its type, \"required\" or \"-\", and the platforms on which it\n"
                          "exists with the versions that introduced, deprecated or removed it. A key\n"
                          "that says nothing of platforms has those of its parent or its domain.\n"
                          "\n"
                          "  --manifests DIR  read the manifests in DIR instead of those in force\n"
                          "  --json           print a JSON object instead: domain, title, category,\n"
                          "                   platforms and keys; each key has name, title, type,\n"
                          "                   required, platforms (platform, introduced, deprecated,\n"
                          "                   removed) and subkeys\n"
                          "\n"
                          "Exit status: 0 when shown, 2 for a usage error, a domain that isn't there or\n"
                          "manifests that can't be read.");
}

int DomainShowCommand::run(const QStringList& arguments, CommandStreams& streams) const {
    const auto parsed =
        ParsedArguments::parse(arguments, ParsedArguments::Options({kManifestsOption}, {kJsonFlag}));
    if (!parsed)
        return usageError(streams, parsed.error());
    if (parsed->operands().size() != 1)
        return usageError(streams, QStringLiteral("give exactly one domain"));

    const QString wanted = parsed->operands().first();
    const auto listing = DomainSource::load(parsed->value(kManifestsOption));
    if (!listing) {
        streams.printError(
            QStringLiteral("%1 %2: %3").arg(CommandLineTool::programName(), name(), listing.error()));
        return ExitCode::usageOrInputError;
    }
    const auto domain = DomainSource::find(listing->domains, wanted);
    if (!domain) {
        streams.printError(
            QStringLiteral("%1 %2: unknown domain '%3'").arg(CommandLineTool::programName(), name(), wanted));
        return ExitCode::usageOrInputError;
    }

    const Availability domainAvailability = domain->supportedPlatforms();
    if (parsed->hasFlag(kJsonFlag)) {
        const QJsonObject object{
            {QStringLiteral("domain"), domain->domainString()},
            {QStringLiteral("title"), domain->title()},
            {QStringLiteral("category"), PFMDomain::rawValue(domain->domainCategory())},
            {QStringLiteral("platforms"), availabilityJson(domainAvailability)},
            {QStringLiteral("keys"), keysJson(domain->keyPrototypes(), domainAvailability)},
        };
        streams.writeOutput(QJsonDocument(object).toJson(QJsonDocument::Indented));
        return ExitCode::success;
    }
    streams.print(QStringLiteral("%1\t%2\t%3")
                      .arg(domain->domainString(), domain->title(), availabilityText(domainAvailability)));
    printKeys(domain->keyPrototypes(), domainAvailability, 1, streams);
    return ExitCode::success;
}

DomainShowCommand::Availability DomainShowCommand::availability(const PFMKeyPrototype& key,
                                                                const Availability& parent) {
    if (key.supportedOSes())
        return parent ? SupportedPlatforms::combinedWithParent(*key.supportedOSes(), *parent)
                      : SupportedPlatforms::fromSupportedOSes(*key.supportedOSes());
    if (key.supportedModels() || key.lifeCycleVersions())
        return parent ? SupportedPlatforms::combinedWithParent(key.supportedModels(), key.lifeCycleVersions(),
                                                               *parent)
                      : SupportedPlatforms::make(key.supportedModels(), key.lifeCycleVersions());
    return parent;
}

QString DomainShowCommand::availabilityText(const Availability& availability) {
    if (!availability)
        return QStringLiteral("all platforms");
    QStringList platforms;
    for (const SupportedPlatform& platform : availability->platforms()) {
        QStringList parts{PFMSupportedPlatforms::displayName(platform.model)};
        for (const auto& [stage, version] : platform.versions.value_or(SupportedPlatform::StageVersions{}))
            parts << stageWord(stage) + u' ' + version;
        platforms << parts.join(u' ');
    }
    return platforms.isEmpty() ? QStringLiteral("no platform") : platforms.join(QStringLiteral(", "));
}

QJsonArray DomainShowCommand::availabilityJson(const Availability& availability) {
    QJsonArray platforms;
    if (!availability)
        return platforms;
    for (const SupportedPlatform& platform : availability->platforms()) {
        QJsonObject object{{QStringLiteral("platform"), PFMSupportedPlatforms::displayName(platform.model)}};
        for (const auto& [stage, version] : platform.versions.value_or(SupportedPlatform::StageVersions{}))
            object.insert(stageWord(stage), version);
        platforms.append(object);
    }
    return platforms;
}

void DomainShowCommand::printKeys(const PFMKeyPrototypeList& keys, const Availability& parent, int depth,
                                  CommandStreams& streams) {
    for (const auto& key : keys) {
        const Availability own = availability(*key, parent);
        streams.print(QString(2 * depth, u' ') +
                      QStringList{keyName(*key), PFMKeyPrototype::rawValue(key->kind()),
                                  key->required() ? QStringLiteral("required") : QStringLiteral("-"),
                                  availabilityText(own)}
                          .join(u'\t'));
        printKeys(key->subkeys(), own, depth + 1, streams);
    }
}

QJsonArray DomainShowCommand::keysJson(const PFMKeyPrototypeList& keys, const Availability& parent) {
    QJsonArray array;
    for (const auto& key : keys) {
        const Availability own = availability(*key, parent);
        QJsonObject object{
            {QStringLiteral("name"), key->name() ? QJsonValue(*key->name()) : QJsonValue()},
            {QStringLiteral("title"), key->title()},
            {QStringLiteral("type"), PFMKeyPrototype::rawValue(key->kind())},
            {QStringLiteral("required"), key->required()},
            {QStringLiteral("platforms"), availabilityJson(own)},
        };
        if (!key->subkeys().isEmpty())
            object.insert(QStringLiteral("subkeys"), keysJson(key->subkeys(), own));
        array.append(object);
    }
    return array;
}

} // namespace quorlin::cli
