#include "cli/ExportPayloadCommand.h"

#include "cli/CommonOptions.h"
#include "cli/ExitCode.h"
#include "cli/ParsedArguments.h"
#include "cli/ProfileOpener.h"
#include "plist/XmlWriter.h"

namespace quorlin::cli {

namespace {

const QString kUuidOption = QStringLiteral("--uuid");
const QString kStripFlag = QStringLiteral("--strip-payload-keys");
const QString kPayloadUUID = QStringLiteral("PayloadUUID");

// The payload's dictionary as the editor exports it; unknown payloads as they were read.
std::optional<plist::Dictionary> payloadDictionary(const Profile& profile, const QString& uuid) {
    // UUIDs are written in either case; both name the same payload.
    const auto matches = [&](const QString& candidate) {
        return candidate.compare(uuid, Qt::CaseInsensitive) == 0;
    };
    QList<Payload::Pointer> payloads{profile.rootPayload()};
    payloads.append(profile.configurationPayloads());
    for (const auto& payload : payloads) {
        if (matches(payload->stringValue(kPayloadUUID).value_or(QString())))
            return payload->writeOutDictionary();
    }
    for (const auto& dictionary : profile.unfamiliarPayloads()) {
        if (matches(dictionary.value(kPayloadUUID).toString().value_or(QString())))
            return dictionary;
    }
    return std::nullopt;
}

void stripPayloadKeys(plist::Dictionary& dictionary) {
    for (const QString& name : dictionary.keys()) {
        if (name.startsWith(QLatin1String("Payload")))
            dictionary.remove(name);
    }
}

} // namespace

QString ExportPayloadCommand::summary() const {
    return QStringLiteral("Write one payload of a profile to a property list");
}

QString ExportPayloadCommand::help() const {
    return QStringLiteral("Usage: quorlin-profile export-payload FILE --uuid UUID -o OUT.plist\n"
                          "                                      [--strip-payload-keys] [--manifests DIR]\n"
                          "\n"
                          "Opens the profile FILE as the editor does and writes the payload whose\n"
                          "PayloadUUID is UUID, the general settings' included, to OUT as an XML\n"
                          "property list, as the editor exports a payload.\n"
                          "\n"
                          "  --uuid UUID           the payload's PayloadUUID (required)\n"
                          "  -o OUT                where to write it (required); \"-\" for standard output\n"
                          "  --strip-payload-keys  leave out the keys whose names begin with \"Payload\",\n"
                          "                        for a preference file\n"
                          "  --manifests DIR       take the domains from the manifests in DIR\n"
                          "\n"
                          "Exit status: 0 when written, 2 for a usage error, a file that can't be opened\n"
                          "as a profile, no payload with that UUID or an output that can't be written.");
}

int ExportPayloadCommand::run(const QStringList& arguments, CommandStreams& streams) const {
    const auto parsed = ParsedArguments::parse(
        arguments, ParsedArguments::Options({kUuidOption, kOutputOption, kManifestsOption}, {kStripFlag}));
    if (!parsed)
        return usageError(streams, parsed.error());
    if (parsed->operands().size() != 1)
        return usageError(streams, QStringLiteral("give exactly one file"));
    const auto uuid = parsed->value(kUuidOption);
    if (!uuid)
        return usageError(streams, QStringLiteral("no payload given (--uuid UUID)"));
    const auto output = parsed->value(kOutputOption);
    if (!output)
        return usageError(streams, QStringLiteral("no output file given (-o OUT)"));

    const QString input = parsed->operands().first();
    const auto context = ProfileContext::make(parsed->value(kManifestsOption));
    if (!context)
        return commandError(streams, context.error());
    const auto opened = ProfileOpener(*context).open(input);
    if (!opened)
        return inputError(streams, opened.error().message);
    auto dictionary = payloadDictionary(*opened->profile, *uuid);
    if (!dictionary)
        return inputError(streams, QStringLiteral("%1: no payload with the UUID %2").arg(input, *uuid));
    if (parsed->hasFlag(kStripFlag))
        stripPayloadKeys(*dictionary);
    const auto bytes = plist::XmlWriter::write(plist::Value(*dictionary));
    if (!bytes)
        return inputError(streams, input + QStringLiteral(": cannot write the payload as a property list"));
    return writeOutputFile(streams, *output, *bytes);
}

} // namespace quorlin::cli
