#pragma once

#include "documents/OpenSslHandles.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>

namespace quorlin {

// The basic X.509 policy (a good chain within its validity, no usage
// constraint) against the system's roots plus the user's own anchors.
class CertificateTrust {
public:
    // Anchor files add roots for one run, as a command's --ca-file does.
    explicit CertificateTrust(const QString& anchorsFolder, const QStringList& anchorFiles = {});

    // A verdict on the chain alone, dates aside: an expired certificate that
    // leads to a trusted root is still "chain trusted". The reason is in
    // plain words, empty when the chain is trusted.
    struct ChainVerdict {
        bool isTrusted = false;
        QString reason;
    };
    ChainVerdict judgeChain(X509* leaf, STACK_OF(X509) * untrusted) const;

    // How many certificates a PEM bundle or a DER file holds.
    static int certificateCount(const QByteArray& contents);

    // From the leaf up to a trusted root; nothing when no such chain exists.
    std::optional<openssl::CertificateStack> verifiedChain(X509* leaf, STACK_OF(X509) * untrusted) const;
    bool isTrusted(X509* leaf, STACK_OF(X509) * untrusted) const {
        return verifiedChain(leaf, untrusted).has_value();
    }

private:
    openssl::Store m_store;
};

} // namespace quorlin
