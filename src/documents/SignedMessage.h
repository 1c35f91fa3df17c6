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
    // Judged apart from the dates, which the two flags below tell.
    bool isChainTrusted = false;
    // Why not, in plain words; empty when trusted.
    QString untrustedReason;
    bool isExpired = false;
    bool isNotYetValid = false;
};

struct SignedMessage {
    QByteArray content;
    QStringList signerCommonNames;
    QList<SignerVerification> signers;
};

} // namespace quorlin
