#include "documents/EnvelopeWords.h"

#include <QStringList>

namespace quorlin {

QString EnvelopeWords::describe(ProfileEncryptionServices::Failure failure) {
    using Failure = ProfileEncryptionServices::Failure;
    switch (failure) {
    case Failure::malformedEnvelope:
        return QStringLiteral(
            "The encrypted payload content is truncated or is not a CMS enveloped message.");
    case Failure::unknownAlgorithm:
        return QStringLiteral("The payloads are encrypted with an algorithm that is not supported.");
    case Failure::notARecipient:
        return QStringLiteral("The payloads are not encrypted for this identity's certificate.");
    case Failure::keyUnavailable:
        return QStringLiteral(
            "The identity's private key could not be read (wrong passphrase, or the identity "
            "is missing).");
    case Failure::wrongKey:
        return QStringLiteral("The payloads could not be decrypted with this identity's key.");
    case Failure::unreadableCertificate:
        return QStringLiteral("A recipient certificate could not be read (PEM or DER expected).");
    case Failure::noRecipients:
        return QStringLiteral("No recipient certificate was given.");
    case Failure::encryptionFailed:
        return QStringLiteral("The payloads could not be encrypted for the recipient certificates.");
    case Failure::notAPayloadArray:
        return QStringLiteral("The decrypted content is not a property list of payloads.");
    case Failure::stillEncrypted:
        return QStringLiteral(
            "The payloads are still encrypted: decrypt them before encrypting them for other "
            "recipients.");
    }
    return {};
}

QString EnvelopeWords::describe(const EnvelopeRecipient& recipient) {
    if (recipient.issuer.isEmpty())
        return keyIdentifierLabel + u' ' + recipient.keyIdentifier;
    return recipient.issuer + QStringLiteral(", ") + serialLabel + u' ' + recipient.serialNumber;
}

QString EnvelopeWords::describe(const QList<EnvelopeRecipient>& recipients) {
    QStringList lines;
    for (const EnvelopeRecipient& recipient : recipients)
        lines.append(describe(recipient));
    return lines.join(u'\n');
}

} // namespace quorlin
