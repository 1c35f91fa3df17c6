#include "cli/FormatCommand.h"

#include "cli/CommandLineTool.h"
#include "cli/CommonOptions.h"
#include "cli/ExitCode.h"
#include "cli/IdentityChoice.h"
#include "cli/OutputFile.h"
#include "cli/ParsedArguments.h"
#include "cli/ProfileFiles.h"
#include "cli/ProfileOpener.h"
#include "cli/RecipientCertificates.h"
#include "cli/SecretSource.h"
#include "plist/PlistReader.h"
#include "validation/HeldValueWords.h"

namespace quorlin::cli {

namespace {

const QString kCheckFlag = QStringLiteral("--check");
const QString kRepairFlag = QStringLiteral("--repair");

// What became of one file.
enum class Outcome { unchanged, changed, leftAsIs, failed };

struct Run {
    bool onlyCheck = false;
    bool repair = false;
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

// Takes out every value the profile holds against its manifests, telling
// each on standard error.
void removeHeldValues(const Run& run, const OpenedProfile& opened) {
    const auto& profile = *opened.profile;
    QList<Payload::Pointer> payloads{profile.rootPayload()};
    payloads.append(profile.configurationPayloads());
    for (const auto& payload : payloads) {
        const QString type = payload->domainPrototype().domainString();
        for (const auto& place : payload->heldValuePlaces()) {
            for (const auto& entry : place.key->heldEntries()) {
                const QString where = entry.place.isEmpty()          ? place.path
                                      : entry.place.startsWith(u'[') ? place.path + entry.place
                                                                     : place.path + u'.' + entry.place;
                run.streams.printError(QStringLiteral("%1: removed %2 %3 = %4: %5")
                                           .arg(opened.path,
                                                type.isEmpty() ? QStringLiteral("profile") : type, where,
                                                HeldValueWords::valueText(entry.value),
                                                HeldValueWords::reasonText(*place.key, entry)));
            }
            place.key->replaceHeldValues({});
        }
    }
}

// The check asks whether the values would change: key order, the layout of
// the text and the encoding (a binary file among them) don't count, though
// rewriting normalises them all.
bool sameTree(const QByteArray& written, const QByteArray& read) {
    const auto left = plist::PlistReader::read(written);
    const auto right = plist::PlistReader::read(read);
    return left && right && left->root == right->root;
}

Outcome formatOne(const Run& run, const ProfileOpener& opener, const QString& path) {
    const auto opened = opener.open(path);
    if (!opened) {
        run.streams.printError(opened.error().message);
        return Outcome::failed;
    }
    // Rewriting would turn the file into a profile: it stays what it is.
    if (opened->profile->wrappedSinglePayload()) {
        run.streams.print(path + QStringLiteral(": one payload, not a profile, left as it is"));
        return Outcome::leftAsIs;
    }
    if (run.repair)
        removeHeldValues(run, *opened);
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
    if (*content == opened->content || (run.onlyCheck && sameTree(*content, opened->content)))
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
    return QStringLiteral("Usage: quorlin-profile format FILE... [--check] [--repair] [--identity NAME]\n"
                          "                              [--passphrase-file FILE] [--manifests DIR]\n"
                          "                              [--encrypt-for CERT]...\n"
                          "\n"
                          "Opens each profile as the editor does and writes it back as the editor saves\n"
                          "it: an XML property list of the values the editor writes out, unknown\n"
                          "payloads kept after the known ones, malformed ones dropped, and repeated or\n"
                          "default payload UUIDs and identifiers replaced. Values that the manifests\n"
                          "don't allow (of the wrong class, left out by a rule, not described, or items\n"
                          "that fit no kind of item) are kept where they are, as the editor keeps them.\n"
                          "A file that holds one payload rather than a profile is left as it is.\n"
                          "Files already in form are not touched; others are replaced whole, keeping\n"
                          "their permissions, and listed as \"FILE: reformatted\". A FILE that is a\n"
                          "folder stands for every \".mobileconfig\" file below it.\n"
                          "\n"
                          "A signed profile whose content would change can't be rewritten without\n"
                          "breaking its signature: it is listed as \"left as it is\" unless --identity\n"
                          "names an identity to sign the new content with (see \"identity list\").\n"
                          "\n"
                          "  --check                only list the files whose values would change, as\n"
                          "                         \"FILE: would be reformatted\"; key order, layout and\n"
                          "                         encoding (XML or binary) don't count; for a signed\n"
                          "                         file, its content\n"
                          "  --repair               remove the values the manifests don't allow, each\n"
                          "                         listed on standard error as \"FILE: removed TYPE\n"
                          "                         PATH = VALUE: REASON\"\n"
                          "  --identity NAME        sign rewritten signed profiles with this identity\n"
                          "  --passphrase-file FILE read the identity's passphrase from the first line of\n"
                          "                         FILE instead of asking at the terminal\n"
                          "  --manifests DIR        take the domains from the manifests in DIR\n"
                          "  --encrypt-for CERT     encrypt the payloads for this certificate (PEM or DER;\n"
                          "                         may be repeated), as \"encrypt\" does\n"
                          "\n"
                          "Exit status: 0 when every file is (now) in form; 1 when --check found a file\n"
                          "that would change, or a signed or single-payload file was left as it is; 2 for\n"
                          "a usage error or a file that can't be opened or written (the others are\n"
                          "still done).");
}

int FormatCommand::run(const QStringList& arguments, CommandStreams& streams) const {
    const auto parsed = ParsedArguments::parse(
        arguments, ParsedArguments::Options({kIdentityOption, kPassphraseFileOption, kManifestsOption},
                                            {kCheckFlag, kRepairFlag}, {kEncryptForOption}));
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
    const Run run{parsed->hasFlag(kCheckFlag),
                  parsed->hasFlag(kRepairFlag),
                  parsed->value(kIdentityOption),
                  *certificates,
                  *context,
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
