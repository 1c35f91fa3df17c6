#include "TestPki.h"

#include <openssl/pem.h>
#include <openssl/x509v3.h>

namespace quorlin::test {

namespace {

constexpr long secondsPerDay = 24L * 60 * 60;

void addExtension(X509* certificate, X509* issuer, int nid, const char* value) {
    X509V3_CTX context;
    X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
    X509_EXTENSION* extension = X509V3_EXT_conf_nid(nullptr, &context, nid, value);
    X509_add_ext(certificate, extension, -1);
    X509_EXTENSION_free(extension);
}

void setSubject(X509* certificate, const std::optional<QString>& commonName) {
    X509_NAME* subject = X509_get_subject_name(certificate);
    X509_NAME_add_entry_by_txt(subject, "O", MBSTRING_UTF8,
                               reinterpret_cast<const unsigned char*>("Quorlin Tests"), -1, -1, 0);
    if (commonName) {
        const QByteArray name = commonName->toUtf8();
        X509_NAME_add_entry_by_txt(subject, "CN", MBSTRING_UTF8,
                                   reinterpret_cast<const unsigned char*>(name.constData()), -1, -1, 0);
    } else {
        X509_NAME_add_entry_by_txt(subject, "OU", MBSTRING_UTF8,
                                   reinterpret_cast<const unsigned char*>("Nameless"), -1, -1, 0);
    }
}

} // namespace

TestCertificate TestPki::issue(const std::optional<QString>& commonName, const TestCertificate* issuer,
                               bool isAuthority, CertificateValidity validity, KeyType keyType) {
    static long serial = 1;
    EVP_PKEY* key = keyType == KeyType::rsa ? EVP_RSA_gen(2048) : EVP_EC_gen("P-256");
    TestCertificate made{openssl::Certificate(X509_new()), openssl::Key(key)};
    X509* certificate = made.certificate.get();
    X509_set_version(certificate, 2);
    ASN1_INTEGER_set(X509_get_serialNumber(certificate), serial++);
    X509_gmtime_adj(X509_getm_notBefore(certificate), validity.fromDays * secondsPerDay);
    X509_gmtime_adj(X509_getm_notAfter(certificate), validity.toDays * secondsPerDay);
    X509_set_pubkey(certificate, made.key.get());
    setSubject(certificate, commonName);
    X509* issuerCertificate = issuer ? issuer->certificate.get() : certificate;
    X509_set_issuer_name(certificate, X509_get_subject_name(issuerCertificate));
    addExtension(certificate, issuerCertificate, NID_basic_constraints,
                 isAuthority ? "critical,CA:TRUE" : "critical,CA:FALSE");
    addExtension(certificate, issuerCertificate, NID_key_usage,
                 isAuthority               ? "critical,keyCertSign,cRLSign"
                 : keyType == KeyType::rsa ? "critical,digitalSignature,keyEncipherment"
                                           : "critical,digitalSignature");
    X509_sign(certificate, issuer ? issuer->key.get() : made.key.get(), EVP_sha256());
    return made;
}

QByteArray TestPki::pem(X509* certificate) {
    openssl::Bio out(BIO_new(BIO_s_mem()));
    PEM_write_bio_X509(out.get(), certificate);
    return openssl::memoryContents(out.get());
}

QByteArray TestPki::unencryptedKeyPem(EVP_PKEY* key) {
    openssl::Bio out(BIO_new(BIO_s_mem()));
    PEM_write_bio_PKCS8PrivateKey(out.get(), key, nullptr, nullptr, 0, nullptr, nullptr);
    return openssl::memoryContents(out.get());
}

QByteArray TestPki::pkcs12(const TestCertificate& identity, const QList<X509*>& chain,
                           const QString& password) {
    openssl::CertificateStack authorities(sk_X509_new_null());
    for (X509* certificate : chain) {
        X509_up_ref(certificate);
        sk_X509_push(authorities.get(), certificate);
    }
    const QByteArray passwordBytes = password.toUtf8();
    openssl::Pkcs12 archive(PKCS12_create(passwordBytes.constData(), "test identity", identity.key.get(),
                                          identity.certificate.get(), authorities.get(), 0, 0, 0, 0, 0));
    openssl::Bio out(BIO_new(BIO_s_mem()));
    i2d_PKCS12_bio(out.get(), archive.get());
    return openssl::memoryContents(out.get());
}

} // namespace quorlin::test
