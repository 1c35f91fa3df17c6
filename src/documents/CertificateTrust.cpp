#include "documents/CertificateTrust.h"

#include <openssl/err.h>
#include <openssl/pem.h>

#include <QDir>
#include <QFile>

namespace quorlin {

namespace {

// Anchors come as PEM bundles or single DER certificates (.cer exports).
void addAnchorFile(X509_STORE* store, const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return;
    const QByteArray contents = file.readAll();
    openssl::Bio in = openssl::memoryReader(contents);
    int added = 0;
    while (openssl::Certificate certificate{PEM_read_bio_X509(in.get(), nullptr, nullptr, nullptr)}) {
        X509_STORE_add_cert(store, certificate.get());
        ++added;
    }
    if (added == 0) {
        const auto* bytes = reinterpret_cast<const unsigned char*>(contents.constData());
        if (openssl::Certificate certificate{d2i_X509(nullptr, &bytes, contents.size())})
            X509_STORE_add_cert(store, certificate.get());
    }
    ERR_clear_error();
}

} // namespace

CertificateTrust::CertificateTrust(const QString& anchorsFolder)
    : m_store(X509_STORE_new()) {
    X509_STORE_set_default_paths(m_store.get());
    const QDir folder(anchorsFolder);
    for (const QString& name : folder.entryList(QDir::Files, QDir::Name))
        addAnchorFile(m_store.get(), folder.filePath(name));
    ERR_clear_error();
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
