#include "documents/EnvelopeServices.h"

#include "documents/IdentityFile.h"
#include "documents/OpenSslHandles.h"

#include <openssl/err.h>

#include <QFile>

#include <algorithm>
#include <vector>

namespace quorlin {

namespace {

using Failure = ProfileEncryptionServices::Failure;

// A recipient info names its certificate once, except for key agreement,
// which names one per encrypted key.
struct RecipientSlot {
    CMS_RecipientInfo* info = nullptr;
    CMS_RecipientEncryptedKey* agreedKey = nullptr;
};

openssl::Cms readEnvelope(const QByteArray& der) {
    openssl::Bio in = openssl::memoryReader(der);
    openssl::Cms cms(d2i_CMS_bio(in.get(), nullptr));
    ERR_clear_error();
    if (cms && OBJ_obj2nid(CMS_get0_type(cms.get())) != NID_pkcs7_enveloped)
        cms.reset();
    return cms;
}

QList<RecipientSlot> slotsOf(CMS_ContentInfo* cms) {
    QList<RecipientSlot> slots;
    STACK_OF(CMS_RecipientInfo)* infos = CMS_get0_RecipientInfos(cms);
    for (int index = 0; index < sk_CMS_RecipientInfo_num(infos); ++index) {
        CMS_RecipientInfo* info = sk_CMS_RecipientInfo_value(infos, index);
        switch (CMS_RecipientInfo_type(info)) {
        case CMS_RECIPINFO_TRANS:
            slots.append({info, nullptr});
            break;
        case CMS_RECIPINFO_AGREE: {
            STACK_OF(CMS_RecipientEncryptedKey)* keys = CMS_RecipientInfo_kari_get0_reks(info);
            for (int key = 0; key < sk_CMS_RecipientEncryptedKey_num(keys); ++key)
                slots.append({info, sk_CMS_RecipientEncryptedKey_value(keys, key)});
            break;
        }
        default: // passwords and shared keys name no device
            break;
        }
    }
    return slots;
}

bool isFor(const RecipientSlot& slot, X509* certificate) {
    const int compared = slot.agreedKey ? CMS_RecipientEncryptedKey_cert_cmp(slot.agreedKey, certificate)
                                        : CMS_RecipientInfo_ktri_cert_cmp(slot.info, certificate);
    return compared == 0;
}

QString hexOf(const ASN1_STRING* bytes) {
    return QString::fromLatin1(
        QByteArray(reinterpret_cast<const char*>(ASN1_STRING_get0_data(bytes)), ASN1_STRING_length(bytes))
            .toHex()
            .toUpper());
}

QString serialOf(const ASN1_INTEGER* serial) {
    std::unique_ptr<BIGNUM, openssl::Deleter<BN_free>> number(ASN1_INTEGER_to_BN(serial, nullptr));
    char* hex = number ? BN_bn2hex(number.get()) : nullptr;
    const QString text = hex ? QString::fromLatin1(hex) : QString();
    OPENSSL_free(hex);
    return text;
}

QString nameOf(const X509_NAME* name) {
    openssl::Bio out(BIO_new(BIO_s_mem()));
    X509_NAME_print_ex(out.get(), name, 0, XN_FLAG_RFC2253 & ~ASN1_STRFLGS_ESC_MSB);
    return QString::fromUtf8(openssl::memoryContents(out.get()));
}

EnvelopeRecipient describe(const RecipientSlot& slot) {
    ASN1_OCTET_STRING* keyIdentifier = nullptr;
    X509_NAME* issuer = nullptr;
    ASN1_INTEGER* serial = nullptr;
    if (slot.agreedKey)
        CMS_RecipientEncryptedKey_get0_id(slot.agreedKey, &keyIdentifier, nullptr, nullptr, &issuer, &serial);
    else
        CMS_RecipientInfo_ktri_get0_signer_id(slot.info, &keyIdentifier, &issuer, &serial);
    if (issuer && serial)
        return {nameOf(issuer), serialOf(serial), {}};
    return {{}, {}, keyIdentifier ? hexOf(keyIdentifier) : QString()};
}

QByteArray derOf(X509* certificate) {
    openssl::Bio out(BIO_new(BIO_s_mem()));
    i2d_X509_bio(out.get(), certificate);
    return openssl::memoryContents(out.get());
}

openssl::Certificate certificateFromDer(const QByteArray& der) {
    openssl::Bio in = openssl::memoryReader(der);
    return openssl::Certificate(d2i_X509_bio(in.get(), nullptr));
}

// The leaves of the user's identities, which is where recipients are found.
std::vector<openssl::CertificateStack> identityChains(const SigningServices& identities) {
    std::vector<openssl::CertificateStack> chains;
    for (const SigningIdentity& identity : identities.listIdentities().value_or(QList<SigningIdentity>{})) {
        if (auto chain = IdentityFile::readCertificates(identity.secIdentity.filePath))
            chains.push_back(std::move(*chain));
    }
    return chains;
}

bool hasReason(unsigned long wanted) {
    while (const unsigned long error = ERR_get_error()) {
        if (ERR_GET_REASON(error) == static_cast<int>(wanted))
            return true;
    }
    return false;
}

} // namespace

Expected<QList<EnvelopeRecipient>, Failure> EnvelopeServices::recipients(const QByteArray& envelope) {
    const openssl::Cms cms = readEnvelope(envelope);
    if (!cms)
        return fail(Failure::malformedEnvelope);
    QList<EnvelopeRecipient> found;
    for (const RecipientSlot& slot : slotsOf(cms.get()))
        found.append(describe(slot));
    return found;
}

QStringList EnvelopeServices::recipientIdentityNames(const QByteArray& envelope) {
    const openssl::Cms cms = readEnvelope(envelope);
    if (!cms)
        return {};
    const QList<RecipientSlot> slots = slotsOf(cms.get());
    QStringList names;
    for (const SigningIdentity& identity : m_identities.listIdentities().value_or(QList<SigningIdentity>{})) {
        const auto chain = IdentityFile::readCertificates(identity.secIdentity.filePath);
        X509* leaf = chain ? sk_X509_value(chain->get(), 0) : nullptr;
        if (leaf &&
            std::any_of(slots.begin(), slots.end(), [&](const auto& slot) { return isFor(slot, leaf); }))
            names.append(identity.name);
    }
    ERR_clear_error();
    return names;
}

Expected<ProfileEncryptionServices::DecryptedContent, Failure>
EnvelopeServices::decrypt(const QByteArray& envelope, const QString& identityName) {
    const openssl::Cms cms = readEnvelope(envelope);
    if (!cms)
        return fail(Failure::malformedEnvelope);
    const auto identity = m_identities.identityNamed(identityName);
    const auto chain =
        identity ? IdentityFile::readCertificates(identity->secIdentity.filePath) : std::nullopt;
    if (!chain)
        return fail(Failure::keyUnavailable);
    X509* leaf = sk_X509_value(chain->get(), 0);
    const QList<RecipientSlot> slots = slotsOf(cms.get());
    if (std::none_of(slots.begin(), slots.end(), [&](const auto& slot) { return isFor(slot, leaf); }))
        return fail(Failure::notARecipient);
    const openssl::Key key = IdentityFile::readKey(identity->secIdentity.filePath,
                                                   m_identities.passphraseProvider(), identityName);
    if (!key)
        return fail(Failure::keyUnavailable);
    if (X509_check_private_key(leaf, key.get()) != 1) {
        ERR_clear_error();
        return fail(Failure::wrongKey);
    }
    openssl::Bio out(BIO_new(BIO_s_mem()));
    if (!CMS_decrypt(cms.get(), key.get(), leaf, nullptr, out.get(), CMS_BINARY))
        return fail(hasReason(CMS_R_UNKNOWN_CIPHER) ? Failure::unknownAlgorithm : Failure::wrongKey);

    DecryptedContent decrypted{openssl::memoryContents(out.get()), {}, {}};
    const std::vector<openssl::CertificateStack> chains = identityChains(m_identities);
    for (const RecipientSlot& slot : slots) {
        const auto owner = std::find_if(chains.begin(), chains.end(), [&](const auto& candidate) {
            return isFor(slot, sk_X509_value(candidate.get(), 0));
        });
        if (owner == chains.end()) {
            decrypted.unresolvedRecipients.append(describe(slot));
            continue;
        }
        const QByteArray der = derOf(sk_X509_value(owner->get(), 0));
        if (!decrypted.recipientCertificates.contains(der))
            decrypted.recipientCertificates.append(der);
    }
    ERR_clear_error();
    return decrypted;
}

Expected<QByteArray, Failure> EnvelopeServices::encrypt(const QByteArray& content,
                                                        const QList<QByteArray>& recipientCertificates) {
    if (recipientCertificates.isEmpty())
        return fail(Failure::noRecipients);
    openssl::CertificateStack certificates(sk_X509_new_null());
    for (const QByteArray& der : recipientCertificates) {
        openssl::Certificate certificate = certificateFromDer(der);
        if (!certificate) {
            ERR_clear_error();
            return fail(Failure::unreadableCertificate);
        }
        sk_X509_push(certificates.get(), certificate.release());
    }
    openssl::Bio in = openssl::memoryReader(content);
    const openssl::Cms cms(CMS_encrypt(certificates.get(), in.get(), EVP_aes_256_cbc(), CMS_BINARY));
    openssl::Bio out(BIO_new(BIO_s_mem()));
    const bool written = cms && i2d_CMS_bio(out.get(), cms.get());
    ERR_clear_error();
    if (!written)
        return fail(Failure::encryptionFailed);
    return openssl::memoryContents(out.get());
}

Expected<QByteArray, Failure> EnvelopeServices::readCertificateFile(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return fail(Failure::unreadableCertificate);
    const QByteArray contents = file.readAll();
    openssl::Bio pem = openssl::memoryReader(contents);
    openssl::Certificate certificate(PEM_read_bio_X509(pem.get(), nullptr, nullptr, nullptr));
    if (!certificate)
        certificate = certificateFromDer(contents);
    ERR_clear_error();
    if (!certificate)
        return fail(Failure::unreadableCertificate);
    return derOf(certificate.get());
}

} // namespace quorlin
