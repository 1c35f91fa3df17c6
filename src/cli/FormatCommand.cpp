#include "cli/FormatCommand.h"

#include "cli/CommandLineTool.h"
#include "cli/ExitCode.h"
#include "cli/IdentityChoice.h"
#include "cli/OutputFile.h"
#include "cli/ParsedArguments.h"
#include "cli/ProfileFiles.h"
#include "cli/ProfileOpener.h"
#include "cli/RecipientCertificates.h"
#include "cli/SecretSource.h"

namespace quorlin::cli {

namespace {

const QString kCheckFlag = QStringLiteral("--check");
const QString kIdentityOption = QStringLiteral("--identity");
const QString kPassphraseFileOption = QStringLiteral("--passphrase-file");
const QString kManifestsOption = QStringLiteral("--manifests");
const QString kEncryptForOption = QStringLiteral("--encrypt-for");

// What became of one file.
enum class Outcome { unchanged, changed, leftAsIs, failed };

struct Run {
    bool onlyCheck = false;
    std::optional<QString> identity;
    QList<QByteArray> encryptFor;
    const ProfileContext& context;
    CommandStreams& streams;
};

// The new content signed with the identity given, or an error that starts with the path.
Expected<QByteArray, QString> signedAgain(const Run& run, const QString& path, const QByteArray& content) {
    const auto chosen = IdentityChoice::choose(run.context.signing, *run.identity);
    if (!chosen)
        return fail(path + QStringLiteral(": ") + chosen.error());
    if (chosen->warning)
        run.streams.printError(path + QStringLiteral(": ") + *chosen->warning);
    const auto message = run.context.signing.encodeSignedMessage(content, chosen->identity);
    if (!message)
        return fail(QStringLiteral("%1: cannot sign with “%2”: wrong passphrase or unreadable key")
                        .arg(path, *run.identity));
    return *message;
}

Outcome formatOne(const Run& run, const ProfileOpener& opener, const QString& path) {
    const auto opened = opener.open(path);
    if (!opened) {
        run.streams.printError(opened.error().message);
        return Outcome::failed;
    }
    if (const auto applied = RecipientCertificates::apply(*opened->profile, run.encryptFor, path); !applied) {
        run.streams.printError(applied.error());
        return Outcome::failed;
    }
    // An empty name saves unsigned, whatever identity the file was signed with.
    const auto content = opened->profile->profileData(QString());
    if (!content) {
        run.streams.printError(path + QStringLiteral(": cannot make the profile's data"));
        return Outcome::failed;
    }
    if (*content == opened->content)
        return Outcome::unchanged;
    if (run.onlyCheck) {
        run.streams.print(path + QStringLiteral(": would be reformatted"));
        return Outcome::changed;
    }
    if (opened->isSigned() && !run.identity) {
        run.streams.print(path +
                          QStringLiteral(": signed, left as it is (give --identity NAME to sign it again)"));
        return Outcome::leftAsIs;
    }
    const auto bytes =
        opened->isSigned() ? signedAgain(run, path, *content) : Expected<QByteArray, QString>(*content);
    if (!bytes) {
        run.streams.printError(bytes.error());
        return Outcome::failed;
    }
    if (const auto written = OutputFile::write(path, *bytes); !written) {
        run.streams.printError(path + QStringLiteral(": cannot write: ") + written.error());
        return Outcome::failed;
    }
    run.streams.print(path + QStringLiteral(": reformatted"));
    return Outcome::changed;
}

} // namespace

QString FormatCommand::summary() const {
    return QStringLiteral("Rewrite profiles as the editor saves them");
}

QString FormatCommand::help() const {
    return QStringLiteral("Usage: quorlin-profile format FILE... [--check] [--identity NAME]\n"
                          "                              [--passphrase-file FILE] [--manifests DIR]\n"
                          "                              [--encrypt-for CERT]...\n"
                          "\n"
                          "Opens each profile as the editor does and writes it back as the editor saves\n"
                          "it: an XML property list of the values the editor writes out, unknown\n"
                          "payloads kept after the known ones, malformed ones dropped, and repeated or\n"
                          "default payload UUIDs and identifiers replaced. Files already in that form\n"
                          "are not touched; others are replaced whole, keeping their permissions, and\n"
                          "listed as \"FILE: reformatted\". A FILE that is a folder stands for every\n"
                          "\".mobileconfig\" file below it.\n"
                          "\n"
                          "A signed profile whose content would change can't be rewritten without\n"
                          "breaking its signature: it is listed as \"left as it is\" unless --identity\n"
                          "names an identity to sign the new content with (see \"identity list\").\n"
                          "\n"
                          "  --check                only list the files that would change, as \"FILE: would\n"
                          "                         be reformatted\"; for a signed file, its content\n"
                          "  --identity NAME        sign rewritten signed profiles with this identity\n"
                          "  --passphrase-file FILE read the identity's passphrase from the first line of\n"
                          "                         FILE instead of asking at the terminal\n"
                          "  --manifests DIR        take the domains from the manifests in DIR\n"
                          "  --encrypt-for CERT     encrypt the payloads for this certificate (PEM or DER;\n"
                          "                         may be repeated), as \"encrypt\" does\n"
                          "\n"
                          "Exit status: 0 when every file is (now) in form; 1 when --check found a file\n"
                          "that would change, or a signed file was left as it is; 2 for a usage error or\n"
                          "a file that can't be opened or written (the others are still done).");
}

int FormatCommand::run(const QStringList& arguments, CommandStreams& streams) const {
    const auto parsed = ParsedArguments::parse(
        arguments, ParsedArguments::Options({kIdentityOption, kPassphraseFileOption, kManifestsOption},
                                            {kCheckFlag}, {kEncryptForOption}));
    if (!parsed)
        return usageError(streams, parsed.error());
    if (parsed->operands().isEmpty())
        return usageError(streams, QStringLiteral("no file given"));
    // Each file is rewritten where it is; standard input has no place to go back to.
    if (parsed->operands().contains(standardStream))
        return usageError(streams, QStringLiteral("'-' can't be rewritten in place; give files"));
    SecretSource passphrases(parsed->value(kPassphraseFileOption), QStringLiteral("Passphrase of “%1”: "));
    const auto context = ProfileContext::make(parsed->value(kManifestsOption), &passphrases);
    if (!context)
        return commandError(streams, context.error());

    const auto certificates = RecipientCertificates::read(parsed->values(kEncryptForOption));
    if (!certificates)
        return inputError(streams, certificates.error());
    const Run run{parsed->hasFlag(kCheckFlag), parsed->value(kIdentityOption), *certificates, *context,
                  streams};
    const ProfileFiles::Expansion expansion = ProfileFiles::expand(parsed->operands());
    bool anyFailed = !expansion.problems.isEmpty();
    for (const auto& problem : expansion.problems)
        streams.printError(problem.message);
    bool anyFinding = false;
    const ProfileOpener opener(*context);
    for (const QString& file : expansion.files) {
        const Outcome outcome = formatOne(run, opener, file);
        anyFailed |= outcome == Outcome::failed;
        anyFinding |= outcome == Outcome::leftAsIs || (run.onlyCheck && outcome == Outcome::changed);
    }
    if (anyFailed)
        return ExitCode::usageOrInputError;
    return anyFinding ? ExitCode::findings : ExitCode::success;
}

} // namespace quorlin::cli
