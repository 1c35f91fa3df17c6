#include "documents/CertificateTrust.h"

#include <openssl/err.h>
#include <openssl/pem.h>

#include <QDir>
#include <QFile>

namespace quorlin {

namespace {

// Anchors come as PEM bundles or single DER certificates (.cer exports).
// Adds to the store when one is given; the count of certificates found.
int readAnchors(X509_STORE* store, const QByteArray& contents) {
    openssl::Bio in = openssl::memoryReader(contents);
    int added = 0;
    while (openssl::Certificate certificate{PEM_read_bio_X509(in.get(), nullptr, nullptr, nullptr)}) {
        if (store)
            X509_STORE_add_cert(store, certificate.get());
        ++added;
    }
    if (added == 0) {
        const auto* bytes = reinterpret_cast<const unsigned char*>(contents.constData());
        if (openssl::Certificate certificate{d2i_X509(nullptr, &bytes, contents.size())}) {
            if (store)
                X509_STORE_add_cert(store, certificate.get());
            ++added;
        }
    }
    ERR_clear_error();
    return added;
}

void addAnchorFile(X509_STORE* store, const QString& path) {
    QFile file(path);
    if (file.open(QIODevice::ReadOnly))
        readAnchors(store, file.read(1024 * 1024));
}

// The verifier's own words are terse; the common faults in the user's terms.
QString chainFaultWords(int error) {
    switch (error) {
    case X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT:
    case X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT_LOCALLY:
        return QStringLiteral("no trusted root or anchor issued it");
    case X509_V_ERR_DEPTH_ZERO_SELF_SIGNED_CERT:
        return QStringLiteral("the certificate is self-signed and not a trusted root");
    case X509_V_ERR_SELF_SIGNED_CERT_IN_CHAIN:
        return QStringLiteral("its root is not among the trusted roots");
    case X509_V_ERR_CERT_SIGNATURE_FAILURE:
        return QStringLiteral("a certificate of the chain has a broken signature");
    case X509_V_ERR_INVALID_CA:
        return QStringLiteral("an issuer of the chain is not a certificate authority");
    default:
        return QString::fromUtf8(X509_verify_cert_error_string(error));
    }
}

} // namespace

CertificateTrust::CertificateTrust(const QString& anchorsFolder, const QStringList& anchorFiles)
    : m_store(X509_STORE_new()) {
    X509_STORE_set_default_paths(m_store.get());
    const QDir folder(anchorsFolder);
    for (const QString& name : folder.entryList(QDir::Files, QDir::Name))
        addAnchorFile(m_store.get(), folder.filePath(name));
    for (const QString& path : anchorFiles)
        addAnchorFile(m_store.get(), path);
    ERR_clear_error();
}

int CertificateTrust::certificateCount(const QByteArray& contents) {
    return readAnchors(nullptr, contents);
}

CertificateTrust::ChainVerdict CertificateTrust::judgeChain(X509* leaf, STACK_OF(X509) * untrusted) const {
    openssl::StoreContext context(X509_STORE_CTX_new());
    if (!context || !X509_STORE_CTX_init(context.get(), m_store.get(), leaf, untrusted))
        return {false, QStringLiteral("the chain could not be checked")};
    X509_STORE_CTX_set_flags(context.get(), X509_V_FLAG_NO_CHECK_TIME);
    const bool verified = X509_verify_cert(context.get()) == 1;
    const int error = X509_STORE_CTX_get_error(context.get());
    ERR_clear_error();
    return {verified, verified ? QString() : chainFaultWords(error)};
}

std::optional<openssl::CertificateStack> CertificateTrust::verifiedChain(X509* leaf,
                                                                         STACK_OF(X509) * untrusted) const {
    openssl::StoreContext context(X509_STORE_CTX_new());
    if (!context || !X509_STORE_CTX_init(context.get(), m_store.get(), leaf, untrusted))
        return std::nullopt;
    const bool verified = X509_verify_cert(context.get()) == 1;
    ERR_clear_error();
    if (!verified)
        return std::nullopt;
    return openssl::CertificateStack(X509_STORE_CTX_get1_chain(context.get()));
}

} // namespace quorlin
