#pragma once

#include "documents/SigningServices.h"
#include "model/ProfileSigningServices.h"

namespace quorlin {

// Gives the profile model what it needs of signing, from the identity store.
class ProfileSigningBridge : public ProfileSigningServices {
public:
    explicit ProfileSigningBridge(SigningServices services)
        : m_services(std::move(services)) {}

    std::optional<SignedContent> readSignedContent(const QByteArray& data) override;
    QString signedMessageFault(const QByteArray& data) override;
    QStringList identityCommonNames() override;
    std::optional<QByteArray> sign(const QByteArray& data, const QString& commonName) override;

private:
    SigningServices m_services;
};

} // namespace quorlin
