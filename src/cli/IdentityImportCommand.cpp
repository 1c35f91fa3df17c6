#include "cli/IdentityImportCommand.h"

#include "cli/CommonOptions.h"
#include "cli/ExitCode.h"
#include "cli/InputFile.h"
#include "cli/ParsedArguments.h"
#include "cli/SecretSource.h"
#include "documents/SigningServices.h"

namespace quorlin::cli {

namespace {

const QString kPasswordFileOption = QStringLiteral("--password-file");

} // namespace

QString IdentityImportCommand::summary() const {
    return QStringLiteral("Import a signing identity from a PKCS#12 file");
}

QString IdentityImportCommand::help() const {
    return QStringLiteral(
        "Usage: quorlin-profile identity import FILE.p12 [--password-file FILE]\n"
        "                                       [--passphrase-file FILE]\n"
        "\n"
        "Imports the certificate, its chain and its private key from a PKCS#12 file\n"
        "into your identity store, the one the editor signs with, and prints \"Imported\n"
        "“NAME” (trusted|untrusted)\". The key is stored encrypted under a new\n"
        "passphrase, which signing asks for. Importing the same certificate again\n"
        "replaces it. FILE.p12 \"-\" reads the archive from standard input.\n"
        "\n"
        "The PKCS#12 password and the new passphrase are asked at the terminal, without\n"
        "echo; scripts give them in files instead, never on the command line:\n"
        "  --password-file FILE    the PKCS#12 file's password: FILE's first line\n"
        "  --passphrase-file FILE  the key's new passphrase: FILE's first line (not empty)\n"
        "\n"
        "Exit status: 0 when imported, 2 for a usage error, a file that can't be read,\n"
        "a wrong password or an empty passphrase.");
}

int IdentityImportCommand::run(const QStringList& arguments, CommandStreams& streams) const {
    const auto parsed = ParsedArguments::parse(arguments, {kPasswordFileOption, kPassphraseFileOption});
    if (!parsed)
        return usageError(streams, parsed.error());
    if (parsed->operands().size() != 1)
        return usageError(streams, QStringLiteral("give exactly one PKCS#12 file"));

    const QString archive = parsed->operands().first();
    // Asking for secrets first would be in vain for a file that isn't there.
    const auto contents = InputFile::read(archive);
    if (!contents)
        return inputError(streams, contents.error().message);
    SecretSource passwordSource(parsed->value(kPasswordFileOption),
                                QStringLiteral("Password of %1: ").arg(archive));
    const auto password = passwordSource.secret();
    if (!password)
        return inputError(streams, archive + QStringLiteral(": no password: ") + password.error());
    SecretSource passphraseSource(parsed->value(kPassphraseFileOption),
                                  QStringLiteral("New passphrase for the identity's key: "));
    const auto passphrase = passphraseSource.secret();
    if (!passphrase)
        return inputError(streams, archive + QStringLiteral(": no passphrase: ") + passphrase.error());
    if (passphrase->isEmpty())
        return inputError(streams, archive + QStringLiteral(": the key's new passphrase must not be empty"));

    const auto identity = SigningServices().importPKCS12Data(*contents, *password, *passphrase);
    if (!identity)
        return inputError(
            streams, archive + QStringLiteral(": cannot import: wrong password, or not a PKCS#12 file with a "
                                              "certificate and its key"));
    streams.print(QStringLiteral("Imported “%1” (%2)")
                      .arg(identity->name,
                           identity->isTrusted ? QStringLiteral("trusted") : QStringLiteral("untrusted")));
    return ExitCode::success;
}

} // namespace quorlin::cli
