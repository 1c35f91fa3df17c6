#pragma once

#include "documents/OpenSslHandles.h"

#include <QString>

#include <optional>

namespace quorlin {

// The basic X.509 policy (a good chain within its validity, no usage
// constraint) against the system's roots plus the user's own anchors.
class CertificateTrust {
public:
    explicit CertificateTrust(const QString& anchorsFolder);

    // From the leaf up to a trusted root; nothing when no such chain exists.
    std::optional<openssl::CertificateStack> verifiedChain(X509* leaf, STACK_OF(X509) * untrusted) const;
    bool isTrusted(X509* leaf, STACK_OF(X509) * untrusted) const {
        return verifiedChain(leaf, untrusted).has_value();
    }

private:
    openssl::Store m_store;
};

} // namespace quorlin
