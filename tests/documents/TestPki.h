#pragma once

#include "documents/OpenSslHandles.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>

namespace quorlin::test {

struct TestCertificate {
    openssl::Certificate certificate;
    openssl::Key key;
};

// Days from now.
struct CertificateValidity {
    int fromDays = -1;
    int toDays = 365;
};

// Devices take encrypted payloads with RSA keys; signers have EC ones.
enum class KeyType { ec, rsa };

// A throw-away PKI made at run time, so no key is ever committed.
class TestPki {
public:
    // Self-signed when there is no issuer; no common name when none is given.
    static TestCertificate issue(const std::optional<QString>& commonName, const TestCertificate* issuer,
                                 bool isAuthority, CertificateValidity validity = {},
                                 KeyType keyType = KeyType::ec);
    static QByteArray pem(X509* certificate);
    static QByteArray unencryptedKeyPem(EVP_PKEY* key);
    static QByteArray pkcs12(const TestCertificate& identity, const QList<X509*>& chain,
                             const QString& password);
};

} // namespace quorlin::test
