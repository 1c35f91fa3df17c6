#pragma once

#include "documents/OpenSslHandles.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace quorlin {

class PassphraseProvider;

// One identity of the store: a PEM file holding the certificate, the rest of
// its chain, and the private key (PKCS#8, usually encrypted), in that order.
class IdentityFile {
public:
    // Leaf first. Never touches the key, so it never needs a passphrase.
    static std::optional<openssl::CertificateStack> readCertificates(const QString& path);
    // Asks the provider only when the key is encrypted.
    static openssl::Key readKey(const QString& path, PassphraseProvider* passphrases, const QString& name);
    // Atomic and private to the user; the key is encrypted with AES-256.
    static bool write(const QString& path, X509* leaf, STACK_OF(X509) * chain, EVP_PKEY* key,
                      const QByteArray& passphrase);
    // Nothing when the subject has no readable common name.
    static std::optional<QString> commonName(X509* certificate);
};

} // namespace quorlin
