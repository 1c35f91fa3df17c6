#include "apptools/SignerCertificates.h"

#include <openssl/cms.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

#include <memory>

namespace quorlin::apptools {

namespace {

// Far more than any real chain; a forged blob can't loop the walk.
constexpr int maximumChainLength = 16;

struct CmsFree {
    void operator()(CMS_ContentInfo* cms) const { CMS_ContentInfo_free(cms); }
};
struct CertificateStackFree {
    void operator()(STACK_OF(X509) * stack) const { sk_X509_pop_free(stack, X509_free); }
};
struct CertificateFree {
    void operator()(X509* certificate) const { X509_free(certificate); }
};

QByteArray der(X509* certificate) {
    unsigned char* bytes = nullptr;
    const int length = i2d_X509(certificate, &bytes);
    if (length <= 0)
        return {};
    QByteArray result(reinterpret_cast<const char*>(bytes), length);
    OPENSSL_free(bytes);
    return result;
}

std::unique_ptr<X509, CertificateFree> readCertificate(const QByteArray& certificateDer) {
    const auto* input = reinterpret_cast<const unsigned char*>(certificateDer.constData());
    return std::unique_ptr<X509, CertificateFree>(d2i_X509(nullptr, &input, long(certificateDer.size())));
}

X509* signerOf(CMS_ContentInfo* cms, STACK_OF(X509) * certificates) {
    STACK_OF(CMS_SignerInfo)* signers = CMS_get0_SignerInfos(cms);
    if (signers && sk_CMS_SignerInfo_num(signers) > 0) {
        CMS_SignerInfo* signer = sk_CMS_SignerInfo_value(signers, 0);
        for (int index = 0; index < sk_X509_num(certificates); ++index) {
            X509* candidate = sk_X509_value(certificates, index);
            if (CMS_SignerInfo_cert_cmp(signer, candidate) == 0)
                return candidate;
        }
    }
    return sk_X509_value(certificates, 0);
}

X509* issuerOf(X509* certificate, STACK_OF(X509) * certificates) {
    if (X509_check_issued(certificate, certificate) == X509_V_OK)
        return nullptr;
    for (int index = 0; index < sk_X509_num(certificates); ++index) {
        X509* candidate = sk_X509_value(certificates, index);
        if (candidate != certificate && X509_check_issued(candidate, certificate) == X509_V_OK)
            return candidate;
    }
    return nullptr;
}

} // namespace

QList<QByteArray> SignerCertificates::chain(const QByteArray& cmsDer) {
    const auto* input = reinterpret_cast<const unsigned char*>(cmsDer.constData());
    std::unique_ptr<CMS_ContentInfo, CmsFree> cms(d2i_CMS_ContentInfo(nullptr, &input, long(cmsDer.size())));
    if (!cms)
        return {};
    std::unique_ptr<STACK_OF(X509), CertificateStackFree> certificates(CMS_get1_certs(cms.get()));
    if (!certificates || sk_X509_num(certificates.get()) == 0)
        return {};

    QList<QByteArray> ordered;
    for (X509* current = signerOf(cms.get(), certificates.get());
         current && ordered.size() < maximumChainLength; current = issuerOf(current, certificates.get())) {
        const QByteArray encoded = der(current);
        if (ordered.contains(encoded))
            break;
        ordered << encoded;
    }
    return ordered;
}

std::optional<QString> SignerCertificates::commonName(const QByteArray& certificateDer) {
    return subjectComponent(certificateDer, "CN");
}

std::optional<QString> SignerCertificates::subjectComponent(const QByteArray& certificateDer,
                                                            const char* shortName) {
    const auto certificate = readCertificate(certificateDer);
    const int nid = OBJ_sn2nid(shortName);
    if (!certificate || nid == NID_undef)
        return std::nullopt;
    X509_NAME* subject = X509_get_subject_name(certificate.get());
    const int index = X509_NAME_get_index_by_NID(subject, nid, -1);
    if (index < 0)
        return std::nullopt;
    ASN1_STRING* value = X509_NAME_ENTRY_get_data(X509_NAME_get_entry(subject, index));
    unsigned char* utf8 = nullptr;
    const int length = ASN1_STRING_to_UTF8(&utf8, value);
    if (length < 0)
        return std::nullopt;
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(utf8), length);
    OPENSSL_free(utf8);
    return text;
}

bool SignerCertificates::hasExtension(const QByteArray& certificateDer, const char* oid) {
    const auto certificate = readCertificate(certificateDer);
    ASN1_OBJECT* object = OBJ_txt2obj(oid, 1);
    const bool found = certificate && object && X509_get_ext_by_OBJ(certificate.get(), object, -1) >= 0;
    ASN1_OBJECT_free(object);
    return found;
}

} // namespace quorlin::apptools
