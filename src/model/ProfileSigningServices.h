#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>

namespace quorlin {

// What the profile needs of the signing layer: opening a signed profile,
// naming the identities at hand, and signing the bytes to save.
class ProfileSigningServices {
public:
    struct SignedContent {
        QByteArray content;
        QStringList signerCommonNames;
    };

    virtual ~ProfileSigningServices() = default;
    // Nothing when the data isn't a signed message.
    virtual std::optional<SignedContent> readSignedContent(const QByteArray& data) = 0;
    // Why data that readSignedContent refused isn't a signed profile, in
    // plain words; empty when that can't be told.
    virtual QString signedMessageFault(const QByteArray& /*data*/) { return {}; }
    // The common names of the signing identities on this machine.
    virtual QStringList identityCommonNames() = 0;
    // Nothing when the identity can't be found or signing fails.
    virtual std::optional<QByteArray> sign(const QByteArray& data, const QString& commonName) = 0;
};

} // namespace quorlin
