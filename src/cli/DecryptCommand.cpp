#include "cli/DecryptCommand.h"

#include "cli/CommonOptions.h"
#include "cli/ExitCode.h"
#include "cli/ParsedArguments.h"
#include "cli/ProfileOpener.h"
#include "cli/SecretSource.h"
#include "documents/EnvelopeWords.h"

namespace quorlin::cli {

QString DecryptCommand::summary() const {
    return QStringLiteral("Decrypt a profile's payloads with one of your identities");
}

QString DecryptCommand::help() const {
    return QStringLiteral(
        "Usage: quorlin-profile decrypt FILE --identity NAME -o OUT [--passphrase-file FILE]\n"
        "                               [--manifests DIR]\n"
        "\n"
        "Opens the \"EncryptedPayloadContent\" of the profile FILE with the identity NAME,\n"
        "which must be one of its recipients (see \"verify\"), and writes the profile to\n"
        "OUT as the editor saves it, unsigned, with its payloads in the open. The key's\n"
        "passphrase is asked at the terminal.\n"
        "\n"
        "  --identity NAME        the identity that decrypts (required)\n"
        "  -o OUT                 where to write the decrypted profile (required)\n"
        "  --passphrase-file FILE read the key's passphrase from the first line of FILE\n"
        "  --manifests DIR        take the domains from the manifests in DIR\n"
        "\n"
        "Exit status: 0 when written, 2 for a usage error, a file that can't be opened\n"
        "as a profile or has no encrypted payloads, an identity that is not a recipient,\n"
        "a wrong passphrase, a damaged envelope or an output that can't be written.");
}

int DecryptCommand::run(const QStringList& arguments, CommandStreams& streams) const {
    const auto parsed = ParsedArguments::parse(
        arguments, {kIdentityOption, kOutputOption, kPassphraseFileOption, kManifestsOption});
    if (!parsed)
        return usageError(streams, parsed.error());
    if (parsed->operands().size() != 1)
        return usageError(streams, QStringLiteral("give exactly one file"));
    const auto identity = parsed->value(kIdentityOption);
    if (!identity)
        return usageError(streams, QStringLiteral("no identity given (--identity NAME)"));
    const auto output = parsed->value(kOutputOption);
    if (!output)
        return usageError(streams, QStringLiteral("no output file given (-o OUT)"));

    const QString input = parsed->operands().first();
    SecretSource passphrases(parsed->value(kPassphraseFileOption), QStringLiteral("Passphrase of “%1”: "));
    const auto context = ProfileContext::make(parsed->value(kManifestsOption), &passphrases);
    if (!context)
        return commandError(streams, context.error());
    const auto opened = ProfileOpener(*context).open(input);
    if (!opened)
        return inputError(streams, opened.error().message);
    if (!opened->profile->encryptedPayloadContent())
        return inputError(streams, input + QStringLiteral(": the payloads are not encrypted"));
    const auto decrypted = opened->profile->decryptPayloadContent(*identity);
    if (!decrypted) {
        const QString reason = passphrases.lastError().value_or(EnvelopeWords::describe(decrypted.error()));
        return inputError(streams,
                          QStringLiteral("%1: cannot decrypt with “%2”: %3").arg(input, *identity, reason));
    }
    opened->profile->setEncryptForCertificates({});
    const auto bytes = opened->profile->profileData(QString());
    if (!bytes)
        return inputError(streams, input + QStringLiteral(": cannot make the profile's data"));
    return writeOutputFile(streams, *output, *bytes);
}

} // namespace quorlin::cli
