#include "documents/CertificateTrust.h"

#include <openssl/err.h>
#include <openssl/pem.h>

#include <QDir>
#include <QFile>

#include <vector>

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

// The system's bundle of roots, parsed once per process: reading and decoding
// a few hundred PEM certificates costs tens of milliseconds, which was paid
// before every check of a signature. Only the bundle file is read eagerly; the
// hashed folder and the default store are looked up lazily, per store.
class SystemBundle {
public:
    static const SystemBundle& shared() {
        static const SystemBundle bundle;
        return bundle;
    }

    void addTo(X509_STORE* store) const {
        for (const openssl::Certificate& certificate : m_certificates)
            X509_STORE_add_cert(store, certificate.get());
        for (const Revocations& revocations : m_revocations)
            X509_STORE_add_crl(store, revocations.get());
    }

private:
    using Revocations = std::unique_ptr<X509_CRL, openssl::Deleter<X509_CRL_free>>;

    SystemBundle() {
        openssl::Store bundle(X509_STORE_new());
        X509_LOOKUP* lookup = bundle ? X509_STORE_add_lookup(bundle.get(), X509_LOOKUP_file()) : nullptr;
        if (!lookup || X509_LOOKUP_load_file(lookup, nullptr, X509_FILETYPE_DEFAULT) != 1) {
            ERR_clear_error();
            return;
        }
        STACK_OF(X509_OBJECT)* objects = X509_STORE_get0_objects(bundle.get());
        for (int i = 0; i < sk_X509_OBJECT_num(objects); ++i)
            keep(sk_X509_OBJECT_value(objects, i));
        ERR_clear_error();
    }

    void keep(X509_OBJECT* object) {
        if (X509* certificate = X509_OBJECT_get0_X509(object); certificate && X509_up_ref(certificate))
            m_certificates.emplace_back(certificate);
        else if (X509_CRL* crl = X509_OBJECT_get0_X509_CRL(object); crl && X509_CRL_up_ref(crl))
            m_revocations.emplace_back(crl);
    }

    std::vector<openssl::Certificate> m_certificates;
    std::vector<Revocations> m_revocations;
};

// What X509_STORE_set_default_paths gives, with the bundle from memory.
void addSystemRoots(X509_STORE* store) {
    SystemBundle::shared().addTo(store);
    if (X509_LOOKUP* folder = X509_STORE_add_lookup(store, X509_LOOKUP_hash_dir()))
        X509_LOOKUP_add_dir(folder, nullptr, X509_FILETYPE_DEFAULT);
    if (X509_LOOKUP* defaultStore = X509_STORE_add_lookup(store, X509_LOOKUP_store()))
        X509_LOOKUP_add_store(defaultStore, nullptr);
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
    addSystemRoots(m_store.get());
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
