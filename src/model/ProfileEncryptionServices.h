#pragma once

#include "plist/Expected.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

namespace quorlin {

// One recipient of an encrypted payload content, as the envelope names it:
// the issuer and serial number of its certificate, or a key identifier.
struct EnvelopeRecipient {
    QString issuer;
    QString serialNumber;  // hexadecimal, as OpenSSL prints it
    QString keyIdentifier; // hexadecimal; only when there is no issuer

    bool operator==(const EnvelopeRecipient&) const = default;
};

// What the profile needs of the layer that encrypts: payloads sealed for the
// certificates of devices, and opened again with one of the user's identities.
class ProfileEncryptionServices {
public:
    enum class Failure {
        malformedEnvelope,
        unknownAlgorithm,
        notARecipient,
        keyUnavailable,
        wrongKey,
        unreadableCertificate,
        noRecipients,
        encryptionFailed,
        notAPayloadArray,
        stillEncrypted
    };

    struct DecryptedContent {
        QByteArray content;
        // DER certificates of the recipients that could be found, so that a
        // save can seal the payloads again for them.
        QList<QByteArray> recipientCertificates;
        QList<EnvelopeRecipient> unresolvedRecipients;
    };

    virtual ~ProfileEncryptionServices() = default;
    virtual Expected<QList<EnvelopeRecipient>, Failure> recipients(const QByteArray& envelope) = 0;
    // The common names of the user's identities that the envelope is for.
    virtual QStringList recipientIdentityNames(const QByteArray& envelope) = 0;
    virtual Expected<DecryptedContent, Failure> decrypt(const QByteArray& envelope,
                                                        const QString& identityName) = 0;
    // CMS enveloped-data, DER, for each of the DER certificates.
    virtual Expected<QByteArray, Failure> encrypt(const QByteArray& content,
                                                  const QList<QByteArray>& recipientCertificates) = 0;
};

} // namespace quorlin
