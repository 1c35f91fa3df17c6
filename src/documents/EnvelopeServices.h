#pragma once

#include "documents/SigningServices.h"
#include "model/ProfileEncryptionServices.h"

namespace quorlin {

// CMS enveloped-data: payload contents sealed with AES-256-CBC for the
// certificates of devices, and opened with the user's identities. The
// identities' certificates are how recipients are found again, so that a
// profile opened with one can be sealed for the same recipients.
class EnvelopeServices : public ProfileEncryptionServices {
public:
    explicit EnvelopeServices(SigningServices identities)
        : m_identities(std::move(identities)) {}

    Expected<QList<EnvelopeRecipient>, Failure> recipients(const QByteArray& envelope) override;
    QStringList recipientIdentityNames(const QByteArray& envelope) override;
    Expected<DecryptedContent, Failure> decrypt(const QByteArray& envelope,
                                                const QString& identityName) override;
    Expected<QByteArray, Failure> encrypt(const QByteArray& content,
                                          const QList<QByteArray>& recipientCertificates) override;

    // A PEM or DER certificate file, as DER.
    static Expected<QByteArray, Failure> readCertificateFile(const QString& path);

private:
    SigningServices m_identities;
};

} // namespace quorlin
