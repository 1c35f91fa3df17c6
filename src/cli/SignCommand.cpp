#include "cli/SignCommand.h"

#include "cli/CommonOptions.h"
#include "cli/ExitCode.h"
#include "cli/IdentityChoice.h"
#include "cli/ParsedArguments.h"
#include "cli/ProfileOpener.h"
#include "cli/RecipientCertificates.h"
#include "cli/SecretSource.h"

namespace quorlin::cli {

QString SignCommand::summary() const {
    return QStringLiteral("Sign a profile with one of your identities");
}

QString SignCommand::help() const {
    return QStringLiteral("Usage: quorlin-profile sign FILE --identity NAME -o OUT [--passphrase-file FILE]\n"
                          "                            [--manifests DIR] [--encrypt-for CERT]...\n"
                          "\n"
                          "Signs the profile FILE with the identity whose certificate has the common\n"
                          "name NAME (see \"identity list\") and writes it to OUT as a CMS signed message\n"
                          "(DER) with the certificate chain up to its root, as the editor saves a signed\n"
                          "profile. FILE must open as a profile; its property list is signed exactly as\n"
                          "it is (run \"format\" first for the editor's form). A FILE that is signed\n"
                          "already is signed afresh over its content. The key's passphrase is asked\n"
                          "at the terminal. Where several identities share NAME, the command lists\n"
                          "their fingerprints and --identity takes the fingerprint of the one to use.\n"
                          "An identity whose certificate has expired signs, with a warning. FILE \"-\"\n"
                          "reads standard input.\n"
                          "\n"
                          "  --identity NAME        the signing identity (required), or its fingerprint\n"
                          "  -o OUT                 where to write the signed profile (required); \"-\" for\n"
                          "                         standard output\n"
                          "  --passphrase-file FILE read the key's passphrase from the first line of FILE\n"
                          "  --manifests DIR        take the domains from the manifests in DIR\n"
                          "  --encrypt-for CERT     first encrypt the payloads for this certificate (PEM or\n"
                          "                         DER; may be repeated), as \"encrypt\" does; the profile\n"
                          "                         is then signed in the editor's form\n"
                          "\n"
                          "Exit status: 0 when signed, 2 for a usage error, a file that can't be opened\n"
                          "as a profile, an unknown identity, a wrong passphrase or an output that can't\n"
                          "be written.");
}

int SignCommand::run(const QStringList& arguments, CommandStreams& streams) const {
    const auto parsed = ParsedArguments::parse(
        arguments,
        ParsedArguments::Options({kIdentityOption, kOutputOption, kPassphraseFileOption, kManifestsOption},
                                 {}, {kEncryptForOption}));
    if (!parsed)
        return usageError(streams, parsed.error());
    if (parsed->operands().size() != 1)
        return usageError(streams, QStringLiteral("give exactly one file"));
    const auto identityName = parsed->value(kIdentityOption);
    if (!identityName)
        return usageError(streams, QStringLiteral("no identity given (--identity NAME)"));
    const auto output = parsed->value(kOutputOption);
    if (!output)
        return usageError(streams, QStringLiteral("no output file given (-o OUT)"));

    const QString input = parsed->operands().first();
    const auto certificates = RecipientCertificates::read(parsed->values(kEncryptForOption));
    if (!certificates)
        return inputError(streams, certificates.error());
    SecretSource passphrases(parsed->value(kPassphraseFileOption), QStringLiteral("Passphrase of “%1”: "));
    const auto context = ProfileContext::make(parsed->value(kManifestsOption), &passphrases);
    if (!context)
        return commandError(streams, context.error());
    const auto opened = ProfileOpener(*context).open(input);
    if (!opened)
        return inputError(streams, opened.error().message);
    const auto chosen = IdentityChoice::choose(context->signing, *identityName);
    if (!chosen)
        return inputError(streams, input + QStringLiteral(": ") + chosen.error());
    if (chosen->warning)
        streams.printError(input + QStringLiteral(": ") + *chosen->warning);
    QByteArray content = opened->content;
    if (!certificates->isEmpty()) {
        if (const auto applied = RecipientCertificates::apply(*opened->profile, *certificates, input);
            !applied)
            return inputError(streams, applied.error());
        const auto sealed = opened->profile->profileData(QString());
        if (!sealed)
            return inputError(streams, input + QStringLiteral(": cannot encrypt the payloads"));
        content = *sealed;
    }
    const auto message = context->signing.encodeSignedMessage(content, chosen->identity);
    if (!message) {
        const QString reason =
            passphrases.lastError().value_or(QStringLiteral("wrong passphrase or unreadable key"));
        return inputError(streams,
                          QStringLiteral("%1: cannot sign with “%2”: %3").arg(input, *identityName, reason));
    }
    return writeOutputFile(streams, *output, *message);
}

} // namespace quorlin::cli
