#include "cli/IdentityListCommand.h"

#include "cli/CommandLineTool.h"
#include "cli/CommonOptions.h"
#include "cli/ExitCode.h"
#include "cli/ParsedArguments.h"
#include "documents/SigningServices.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace quorlin::cli {

namespace {

QString trustWord(const SigningIdentity& identity) {
    return identity.isTrusted ? QStringLiteral("trusted") : QStringLiteral("untrusted");
}

} // namespace

QString IdentityListCommand::summary() const {
    return QStringLiteral("List your signing identities");
}

QString IdentityListCommand::help() const {
    return QStringLiteral("Usage: quorlin-profile identity list [--json]\n"
                          "\n"
                          "Lists the signing identities of your store, the ones the editor and \"sign\"\n"
                          "can use: one line each, with tabs between, of the certificate's common name,\n"
                          "\"trusted\" or \"untrusted\" (whether its chain leads to a root of the system's\n"
                          "store or to one of your anchors) and the file that holds it.\n"
                          "\n"
                          "  --json  print a JSON array instead, one object per identity with name,\n"
                          "          trusted, file, fingerprint (SHA-256, what \"sign --identity\" takes\n"
                          "          where names repeat) and expires\n"
                          "\n"
                          "Exit status: 0 when listed (an empty store lists nothing), 2 for a usage\n"
                          "error or a store that can't be read.");
}

int IdentityListCommand::run(const QStringList& arguments, CommandStreams& streams) const {
    const auto parsed = ParsedArguments::parse(arguments, ParsedArguments::Options({}, {kJsonFlag}));
    if (!parsed)
        return usageError(streams, parsed.error());
    if (!parsed->operands().isEmpty())
        return usageError(streams,
                          QStringLiteral("unexpected argument '%1'").arg(parsed->operands().first()));

    const SigningServices signing;
    const auto identities = signing.listIdentities();
    if (!identities) {
        streams.printError(QStringLiteral("%1 %2: %3: cannot read the folder")
                               .arg(CommandLineTool::programName(), name(), signing.identitiesFolder()));
        return ExitCode::usageOrInputError;
    }
    if (!parsed->hasFlag(kJsonFlag)) {
        for (const SigningIdentity& identity : *identities)
            streams.print(
                QStringList{identity.name, trustWord(identity), identity.secIdentity.filePath}.join(u'\t'));
        return ExitCode::success;
    }
    QJsonArray array;
    for (const SigningIdentity& identity : *identities) {
        const auto facts = signing.certificateFacts(identity);
        array.append(QJsonObject{
            {QStringLiteral("name"), identity.name},
            {QStringLiteral("trusted"), identity.isTrusted},
            {QStringLiteral("file"), identity.secIdentity.filePath},
            {QStringLiteral("fingerprint"), facts ? facts->fingerprint : QString()},
            {QStringLiteral("expires"), facts ? facts->notAfter.toString(Qt::ISODate) : QString()}});
    }
    streams.writeOutput(QJsonDocument(array).toJson(QJsonDocument::Indented));
    return ExitCode::success;
}

} // namespace quorlin::cli
