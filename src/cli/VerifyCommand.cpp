#include "cli/VerifyCommand.h"

#include "cli/CommonOptions.h"
#include "cli/ExitCode.h"
#include "cli/InputFile.h"
#include "cli/ParsedArguments.h"
#include "documents/EnvelopeServices.h"
#include "documents/EnvelopeWords.h"
#include "documents/SigningServices.h"
#include "plist/PlistReader.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace quorlin::cli {

namespace {

const QString kCaFileOption = QStringLiteral("--ca-file");

bool isSound(const SignerVerification& signer) {
    return signer.isSignatureIntact && signer.isChainTrusted && !signer.isExpired && !signer.isNotYetValid;
}

QString chainWords(const SignerVerification& signer) {
    if (signer.isChainTrusted)
        return QStringLiteral("trusted");
    return QStringLiteral("untrusted (%1)").arg(signer.untrustedReason);
}

QString certificateWords(const SignerVerification& signer) {
    if (signer.isExpired)
        return QStringLiteral("expired");
    return signer.isNotYetValid ? QStringLiteral("not yet valid") : QStringLiteral("valid");
}

QString signerLine(const QString& path, const SignerVerification& signer) {
    const QString name = signer.commonName.isEmpty() ? SigningServices::unknownName() : signer.commonName;
    return QStringLiteral("%1: signed by “%2”: signature %3, chain %4, certificate %5")
        .arg(path, name, signer.isSignatureIntact ? QStringLiteral("intact") : QStringLiteral("broken"),
             chainWords(signer), certificateWords(signer));
}

QJsonObject signerJson(const SignerVerification& signer) {
    return QJsonObject{{QStringLiteral("commonName"), signer.commonName},
                       {QStringLiteral("signatureIntact"), signer.isSignatureIntact},
                       {QStringLiteral("chainTrusted"), signer.isChainTrusted},
                       {QStringLiteral("untrustedReason"), signer.untrustedReason},
                       {QStringLiteral("expired"), signer.isExpired},
                       {QStringLiteral("notYetValid"), signer.isNotYetValid}};
}

// The recipients of the sealed payloads of a profile's property list; none
// when they aren't sealed.
QList<EnvelopeRecipient> recipientsOf(const QByteArray& profile, const SigningServices& signing) {
    const auto read = plist::PlistReader::read(profile);
    const plist::Dictionary* root = read ? read->root.dictionary() : nullptr;
    const auto sealed = root ? root->data(QStringLiteral("EncryptedPayloadContent")) : std::nullopt;
    if (!sealed)
        return {};
    const auto recipients = EnvelopeServices(signing).recipients(*sealed);
    return recipients ? *recipients : QList<EnvelopeRecipient>{};
}

QJsonObject recipientJson(const EnvelopeRecipient& recipient) {
    return QJsonObject{{QStringLiteral("issuer"), recipient.issuer},
                       {QStringLiteral("serialNumber"), recipient.serialNumber},
                       {QStringLiteral("keyIdentifier"), recipient.keyIdentifier}};
}

} // namespace

QString VerifyCommand::summary() const {
    return QStringLiteral("Show who signed profiles and whether the signatures hold");
}

QString VerifyCommand::help() const {
    return QStringLiteral("Usage: quorlin-profile verify FILE... [--json] [--ca-file FILE]\n"
                          "\n"
                          "For each signer of each signed profile prints one line: \"FILE: signed by\n"
                          "“NAME”: signature intact|broken, chain trusted|untrusted (REASON), certificate\n"
                          "valid|expired|not yet valid\". The chain is trusted when it leads to a root of\n"
                          "the system's store or to one of your anchors, whatever the certificates'\n"
                          "dates, which the last part tells. A file that is not signed prints \"FILE:\n"
                          "not signed\". A profile whose payloads are encrypted adds a line \"FILE:\n"
                          "encrypted for ISSUER, serial SERIAL\" for each recipient. FILE \"-\" reads\n"
                          "standard input.\n"
                          "\n"
                          "  --json          print a JSON array instead, one object per file with file,\n"
                          "                  signed, signers (commonName, signatureIntact, chainTrusted,\n"
                          "                  untrustedReason, expired, notYetValid) and recipients\n"
                          "                  (issuer, serialNumber, keyIdentifier)\n"
                          "  --ca-file FILE  trust the root certificates of FILE (PEM or DER) too, for\n"
                          "                  this run\n"
                          "\n"
                          "Exit status: 0 when every file is signed and every signature is intact, by a\n"
                          "trusted certificate that hasn't expired; 1 otherwise; 2 for a usage error or\n"
                          "a file that can't be read (the others are still verified).");
}

int VerifyCommand::run(const QStringList& arguments, CommandStreams& streams) const {
    const auto parsed =
        ParsedArguments::parse(arguments, ParsedArguments::Options({kCaFileOption}, {kJsonFlag}));
    if (!parsed)
        return usageError(streams, parsed.error());
    if (parsed->operands().isEmpty())
        return usageError(streams, QStringLiteral("no file given"));

    const bool asJson = parsed->hasFlag(kJsonFlag);
    SigningServices signing;
    if (const auto caFile = parsed->value(kCaFileOption)) {
        if (const auto added = signing.addAnchorFile(*caFile); !added)
            return inputError(streams,
                              *caFile + QStringLiteral(": cannot use as --ca-file: ") + added.error());
    }
    bool anyUnreadable = false;
    bool anyProblem = false;
    QJsonArray files;
    for (const QString& path : parsed->operands()) {
        const auto bytes = InputFile::read(path);
        if (!bytes) {
            streams.printError(bytes.error().message);
            anyUnreadable = true;
            continue;
        }
        const auto message = signing.decodeSignedMessage(*bytes);
        QJsonArray signers;
        if (!message && !asJson)
            streams.print(path + QStringLiteral(": not signed"));
        for (const SignerVerification& signer : message ? message->signers : QList<SignerVerification>{}) {
            anyProblem |= !isSound(signer);
            signers.append(signerJson(signer));
            if (!asJson)
                streams.print(signerLine(path, signer));
        }
        anyProblem |= !message;
        QJsonArray recipients;
        for (const EnvelopeRecipient& recipient :
             recipientsOf(message ? message->content : *bytes, signing)) {
            recipients.append(recipientJson(recipient));
            if (!asJson)
                streams.print(path + QStringLiteral(": encrypted for ") + EnvelopeWords::describe(recipient));
        }
        files.append(QJsonObject{{QStringLiteral("file"), path},
                                 {QStringLiteral("signed"), message.has_value()},
                                 {QStringLiteral("signers"), signers},
                                 {QStringLiteral("recipients"), recipients}});
    }
    if (asJson)
        streams.writeOutput(QJsonDocument(files).toJson(QJsonDocument::Indented));
    if (anyUnreadable)
        return ExitCode::usageOrInputError;
    return anyProblem ? ExitCode::findings : ExitCode::success;
}

} // namespace quorlin::cli
