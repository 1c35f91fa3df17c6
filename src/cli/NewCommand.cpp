#include "cli/NewCommand.h"

#include "cli/CommandLineTool.h"
#include "cli/CommonOptions.h"
#include "cli/ExitCode.h"
#include "cli/ParsedArguments.h"
#include "cli/ProfileContext.h"
#include "model/Profile.h"

#include <QFileInfo>

#include <algorithm>

namespace quorlin::cli {

QString NewCommand::summary() const {
    return QStringLiteral("Make a new profile with payloads of the given domains");
}

QString NewCommand::help() const {
    return QStringLiteral("Usage: quorlin-profile new DOMAIN... -o FILE [--manifests DIR]\n"
                          "\n"
                          "Makes a new configuration profile as the editor makes one for a new window:\n"
                          "the general settings with their defaults and your preferences (organisation,\n"
                          "consent text, identifier prefix), a fresh UUID and identifier for each\n"
                          "payload, and the profile's display name taken from FILE's name. It then adds\n"
                          "one payload of each DOMAIN, in the order given, with the defaults of its\n"
                          "manifest. A domain that allows a single payload gets one however often it\n"
                          "is named. The profile is written unsigned, as an XML property list.\n"
                          "\n"
                          "  -o FILE          where to write the profile (required); replaced whole\n"
                          "  --manifests DIR  take the domains from the manifests in DIR\n"
                          "\n"
                          "Exit status: 0 when written, 2 for a usage error, a domain that isn't there\n"
                          "or a file that can't be written.");
}

int NewCommand::run(const QStringList& arguments, CommandStreams& streams) const {
    const auto parsed = ParsedArguments::parse(arguments, {kOutputOption, kManifestsOption});
    if (!parsed)
        return usageError(streams, parsed.error());
    const auto output = parsed->value(kOutputOption);
    if (!output)
        return usageError(streams, QStringLiteral("no output file given (-o FILE)"));

    const QString prefix = CommandLineTool::programName() + u' ' + name() + QStringLiteral(": ");
    const auto context = ProfileContext::make(parsed->value(kManifestsOption));
    if (!context) {
        streams.printError(prefix + context.error());
        return ExitCode::usageOrInputError;
    }
    QList<std::shared_ptr<const PFMDomain>> domains;
    for (const QString& wanted : parsed->operands()) {
        const auto domain = DomainSource::find(context->domains, wanted);
        // The general settings are always there, once.
        if (!domain || domain->domainString().isEmpty()) {
            streams.printError(prefix + QStringLiteral("unknown domain '%1'").arg(wanted));
            return ExitCode::usageOrInputError;
        }
        domains.append(domain);
    }

    const Profile::Pointer profile = Profile::makeNewProfile(context->domains, context->environment);
    if (!profile) {
        streams.printError(prefix + QStringLiteral("the manifests have no domain for the general settings"));
        return ExitCode::usageOrInputError;
    }
    for (const auto& domain : domains) {
        const bool present =
            std::any_of(profile->configurationPayloads().cbegin(), profile->configurationPayloads().cend(),
                        [&](const auto& payload) { return payload->domainPointer() == domain; });
        if (!domain->singlePayload() || !present)
            profile->addPayload(domain);
    }
    // A new window names its profile after its document.
    const auto displayName = profile->rootPayload()->payloadDisplayNameKey();
    if (displayName && *output != standardStream)
        displayName->setValue(plist::Value(QFileInfo(*output).completeBaseName()));

    // An empty name: unsigned, whatever identity the preferences name.
    const auto bytes = profile->profileData(QString());
    if (!bytes) {
        streams.printError(*output + QStringLiteral(": cannot make the profile's data"));
        return ExitCode::usageOrInputError;
    }
    return writeOutputFile(streams, *output, *bytes);
}

} // namespace quorlin::cli
