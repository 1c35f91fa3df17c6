#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

namespace quorlin {

// What the checks found of one signer. None of it stops a message from opening.
struct SignerVerification {
    QString commonName; // empty when the certificate or its name is missing
    bool isSignatureIntact = false;
    bool isChainTrusted = false;
    bool isExpired = false;
};

struct SignedMessage {
    QByteArray content;
    QStringList signerCommonNames;
    QList<SignerVerification> signers;
};

} // namespace quorlin
