#include "cli/EncryptCommand.h"

#include "cli/CommonOptions.h"
#include "cli/ExitCode.h"
#include "cli/IdentityChoice.h"
#include "cli/ParsedArguments.h"
#include "cli/ProfileOpener.h"
#include "cli/RecipientCertificates.h"
#include "cli/SecretSource.h"

namespace quorlin::cli {

namespace {

const QString kRecipientOption = QStringLiteral("--recipient");

} // namespace

QString EncryptCommand::summary() const {
    return QStringLiteral("Encrypt a profile's payloads for devices' certificates");
}

QString EncryptCommand::help() const {
    return QStringLiteral(
        "Usage: quorlin-profile encrypt FILE --recipient CERT [--recipient CERT]... -o OUT\n"
        "                               [--identity NAME] [--passphrase-file FILE] [--manifests DIR]\n"
        "\n"
        "Writes the profile FILE to OUT as the editor saves it, with its payloads (the\n"
        "\"PayloadContent\" array) encrypted as \"EncryptedPayloadContent\": a CMS\n"
        "enveloped message (DER, AES-256-CBC) that only the holders of the recipients'\n"
        "keys can open. With --identity the result is then signed with that identity.\n"
        "A FILE whose payloads are encrypted already must be decrypted first.\n"
        "\n"
        "  --recipient CERT       a recipient's certificate, PEM or DER (at least one)\n"
        "  -o OUT                 where to write the encrypted profile (required)\n"
        "  --identity NAME        sign the result with this identity (see \"identity list\")\n"
        "  --passphrase-file FILE read the identity's passphrase from the first line of FILE\n"
        "  --manifests DIR        take the domains from the manifests in DIR\n"
        "\n"
        "Exit status: 0 when written, 2 for a usage error, a file that can't be opened\n"
        "as a profile, an unreadable certificate, payloads encrypted already, an\n"
        "unknown identity, a wrong passphrase or an output that can't be written.");
}

int EncryptCommand::run(const QStringList& arguments, CommandStreams& streams) const {
    const auto parsed = ParsedArguments::parse(
        arguments,
        ParsedArguments::Options({kIdentityOption, kOutputOption, kPassphraseFileOption, kManifestsOption},
                                 {}, {kRecipientOption}));
    if (!parsed)
        return usageError(streams, parsed.error());
    if (parsed->operands().size() != 1)
        return usageError(streams, QStringLiteral("give exactly one file"));
    if (parsed->values(kRecipientOption).isEmpty())
        return usageError(streams, QStringLiteral("no recipient given (--recipient CERT)"));
    const auto output = parsed->value(kOutputOption);
    if (!output)
        return usageError(streams, QStringLiteral("no output file given (-o OUT)"));

    const QString input = parsed->operands().first();
    const auto certificates = RecipientCertificates::read(parsed->values(kRecipientOption));
    if (!certificates)
        return inputError(streams, certificates.error());
    SecretSource passphrases(parsed->value(kPassphraseFileOption), QStringLiteral("Passphrase of “%1”: "));
    const auto context = ProfileContext::make(parsed->value(kManifestsOption), &passphrases);
    if (!context)
        return commandError(streams, context.error());
    const auto opened = ProfileOpener(*context).open(input);
    if (!opened)
        return inputError(streams, opened.error().message);
    if (const auto applied = RecipientCertificates::apply(*opened->profile, *certificates, input); !applied)
        return inputError(streams, applied.error());
    const auto sealed = opened->profile->profileData(QString());
    if (!sealed)
        return inputError(streams, input + QStringLiteral(": cannot encrypt the payloads"));
    const auto identityName = parsed->value(kIdentityOption);
    if (!identityName)
        return writeOutputFile(streams, *output, *sealed);
    // Signed as `sign` signs: an identity named by its fingerprint where
    // several share a name, with a warning for one out of its dates.
    const auto chosen = IdentityChoice::choose(context->signing, *identityName);
    if (!chosen)
        return inputError(streams, input + QStringLiteral(": ") + chosen.error());
    if (chosen->warning)
        streams.printError(input + QStringLiteral(": ") + *chosen->warning);
    const auto bytes = context->signing.encodeSignedMessage(*sealed, chosen->identity);
    if (!bytes) {
        const QString reason = passphrases.lastError().value_or(QStringLiteral("signing failed"));
        return inputError(streams, QStringLiteral("%1: cannot sign: %2").arg(input, reason));
    }
    return writeOutputFile(streams, *output, *bytes);
}

} // namespace quorlin::cli
