#pragma once

// cms.h declares its PEM functions only when pem.h came first.
#include <openssl/pem.h>

#include <openssl/bio.h>
#include <openssl/cms.h>
#include <openssl/evp.h>
#include <openssl/pkcs12.h>
#include <openssl/x509.h>
#include <openssl/x509_vfy.h>

#include <QByteArray>

#include <memory>

namespace quorlin::openssl {

template <auto Free>
struct Deleter {
    template <typename T>
    void operator()(T* handle) const {
        Free(handle);
    }
};

using Bio = std::unique_ptr<BIO, Deleter<BIO_free_all>>;
using Certificate = std::unique_ptr<X509, Deleter<X509_free>>;
using Key = std::unique_ptr<EVP_PKEY, Deleter<EVP_PKEY_free>>;
using Cms = std::unique_ptr<CMS_ContentInfo, Deleter<CMS_ContentInfo_free>>;
using Store = std::unique_ptr<X509_STORE, Deleter<X509_STORE_free>>;
using StoreContext = std::unique_ptr<X509_STORE_CTX, Deleter<X509_STORE_CTX_free>>;
using Pkcs12 = std::unique_ptr<PKCS12, Deleter<PKCS12_free>>;

inline void freeCertificateStack(STACK_OF(X509) * stack) {
    sk_X509_pop_free(stack, X509_free);
}
using CertificateStack = std::unique_ptr<STACK_OF(X509), Deleter<freeCertificateStack>>;

// A read-only memory BIO over bytes that outlive it.
inline Bio memoryReader(const QByteArray& bytes) {
    return Bio(BIO_new_mem_buf(bytes.constData(), static_cast<int>(bytes.size())));
}

inline QByteArray memoryContents(BIO* bio) {
    char* data = nullptr;
    const long size = BIO_get_mem_data(bio, &data);
    return QByteArray(data, size);
}

} // namespace quorlin::openssl
