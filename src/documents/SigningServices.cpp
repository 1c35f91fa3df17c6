#include "documents/SigningServices.h"

#include "documents/BoundedFileReader.h"
#include "documents/CertificateTrust.h"
#include "documents/IdentityFile.h"
#include "documents/OpenSslHandles.h"

#include <openssl/err.h>
#include <openssl/pem.h>
#include <openssl/provider.h>

#include <QDir>
#include <QFile>
#include <QStandardPaths>

namespace quorlin {

namespace {

// A profile has one signer and a chain of a few certificates.
constexpr int maximumSigners = 16;
constexpr int maximumCertificates = 64;

std::optional<QByteArray> readAll(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return file.readAll();
}

// Files are named after the certificate, so importing it again replaces it.
QString fingerprintFileName(X509* certificate) {
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned int length = 0;
    X509_digest(certificate, EVP_sha256(), digest, &length);
    const QByteArray bytes(reinterpret_cast<const char*>(digest), static_cast<qsizetype>(length));
    return QString::fromLatin1(bytes.toHex()) + QStringLiteral(".pem");
}

openssl::Cms readCms(const QByteArray& data) {
    openssl::Bio der = openssl::memoryReader(data);
    openssl::Cms cms(d2i_CMS_bio(der.get(), nullptr));
    if (!cms) {
        openssl::Bio pem = openssl::memoryReader(data);
        cms.reset(PEM_read_bio_CMS(pem.get(), nullptr, nullptr, nullptr));
    }
    ERR_clear_error();
    return cms;
}

std::optional<QByteArray> embeddedContent(CMS_ContentInfo* cms) {
    if (OBJ_obj2nid(CMS_get0_type(cms)) != NID_pkcs7_signed)
        return std::nullopt;
    ASN1_OCTET_STRING** content = CMS_get0_content(cms);
    if (!content || !*content)
        return std::nullopt;
    return QByteArray(reinterpret_cast<const char*>(ASN1_STRING_get0_data(*content)),
                      ASN1_STRING_length(*content));
}

// The certificates to embed beyond the signer's own: the verified chain up to
// its root when there is one, else whatever the identity file carries.
QList<X509*> certificatesToEmbed(STACK_OF(X509) * fileChain, STACK_OF(X509) * verifiedChain) {
    STACK_OF(X509)* chain = verifiedChain ? verifiedChain : fileChain;
    QList<X509*> certificates;
    for (int index = 1; index < sk_X509_num(chain); ++index)
        certificates.append(sk_X509_value(chain, index));
    return certificates;
}

std::optional<QByteArray> signedData(const QByteArray& data, X509* signer, EVP_PKEY* key,
                                     const QList<X509*>& chain) {
    constexpr unsigned int flags = CMS_BINARY | CMS_PARTIAL;
    openssl::Cms cms(CMS_sign(nullptr, nullptr, nullptr, nullptr, flags));
    if (!cms)
        return std::nullopt;
    for (X509* certificate : chain)
        CMS_add1_cert(cms.get(), certificate);
    // The S/MIME capabilities attribute is added unless CMS_NOSMIMECAP is given.
    if (!CMS_add1_signer(cms.get(), signer, key, EVP_sha256(), CMS_BINARY))
        return std::nullopt;
    openssl::Bio in = openssl::memoryReader(data);
    if (!CMS_final(cms.get(), in.get(), nullptr, CMS_BINARY))
        return std::nullopt;
    openssl::Bio out(BIO_new(BIO_s_mem()));
    if (!i2d_CMS_bio(out.get(), cms.get()))
        return std::nullopt;
    return openssl::memoryContents(out.get());
}

// Runs the content through the message's digests once; each signer is then
// checked against them.
class ContentDigests {
public:
    explicit ContentDigests(CMS_ContentInfo* cms)
        : m_chain(CMS_dataInit(cms, nullptr)) {
        if (!m_chain)
            return;
        char buffer[4096];
        while (BIO_read(m_chain.get(), buffer, sizeof buffer) > 0) {
        }
    }

    bool matches(CMS_SignerInfo* signer) const {
        return m_chain && CMS_SignerInfo_verify_content(signer, m_chain.get()) == 1;
    }

private:
    openssl::Bio m_chain;
};

SignerVerification verifySigner(CMS_SignerInfo* info, const ContentDigests& digests,
                                const CertificateTrust& trust, STACK_OF(X509) * embedded) {
    SignerVerification verification;
    X509* signer = nullptr;
    CMS_SignerInfo_get0_algs(info, nullptr, &signer, nullptr, nullptr);
    if (!signer)
        return verification;
    verification.commonName = IdentityFile::commonName(signer).value_or(QString());
    const bool hasSignedAttributes = CMS_signed_get_attr_count(info) > 0;
    const bool attributesIntact = !hasSignedAttributes || CMS_SignerInfo_verify(info) == 1;
    verification.isSignatureIntact = attributesIntact && digests.matches(info);
    const CertificateTrust::ChainVerdict chain = trust.judgeChain(signer, embedded);
    verification.isChainTrusted = chain.isTrusted;
    verification.untrustedReason = chain.reason;
    verification.isExpired = X509_cmp_current_time(X509_get0_notAfter(signer)) < 0;
    verification.isNotYetValid = X509_cmp_current_time(X509_get0_notBefore(signer)) > 0;
    ERR_clear_error();
    return verification;
}

} // namespace

SigningServices::SigningServices(PassphraseProvider* passphrases, QString dataFolder)
    : m_passphrases(passphrases)
    , m_dataFolder(dataFolder.isEmpty() ? QStandardPaths::writableLocation(QStandardPaths::AppDataLocation)
                                        : std::move(dataFolder)) {}

QString SigningServices::identitiesFolder() const {
    return QDir(m_dataFolder).filePath(QStringLiteral("identities"));
}

QString SigningServices::anchorsFolder() const {
    return QDir(m_dataFolder).filePath(QStringLiteral("anchors"));
}

Expected<bool, QString> SigningServices::addAnchorFile(const QString& path) {
    const auto contents = BoundedFileReader::read(path);
    if (!contents)
        return fail(contents.error());
    if (CertificateTrust::certificateCount(*contents) == 0)
        return fail(QStringLiteral("holds no certificate in PEM or DER form"));
    m_anchorFiles.append(path);
    return true;
}

QString SigningServices::unknownName() {
    return QStringLiteral("Unknown");
}

std::optional<QList<SigningIdentity>> SigningServices::listIdentities() const {
    const QDir folder(identitiesFolder());
    // A store that was never made holds no identities; one that can't be read fails.
    if (!folder.exists())
        return QList<SigningIdentity>{};
    if (!folder.isReadable())
        return std::nullopt;
    const CertificateTrust trust(anchorsFolder(), m_anchorFiles);
    QList<SigningIdentity> identities;
    for (const QString& fileName : folder.entryList({QStringLiteral("*.pem")}, QDir::Files, QDir::Name)) {
        const QString path = folder.filePath(fileName);
        std::optional<openssl::CertificateStack> certificates = IdentityFile::readCertificates(path);
        if (!certificates)
            continue;
        X509* leaf = sk_X509_value(certificates->get(), 0);
        identities.append({IdentityFile::commonName(leaf).value_or(unknownName()),
                           {path},
                           trust.isTrusted(leaf, certificates->get())});
    }
    return identities;
}

bool SigningServices::hasIdentity(const QString& name) const {
    return identityNamed(name).has_value();
}

std::optional<SigningIdentity> SigningServices::identityNamed(const QString& name) const {
    const std::optional<QList<SigningIdentity>> identities = listIdentities();
    if (!identities)
        return std::nullopt;
    for (const SigningIdentity& identity : *identities) {
        if (identity.name == name)
            return identity;
    }
    return std::nullopt;
}

namespace {

QDateTime dateOf(const ASN1_TIME* time) {
    struct tm parts {};
    if (ASN1_TIME_to_tm(time, &parts) != 1)
        return {};
    return QDateTime(QDate(parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday),
                     QTime(parts.tm_hour, parts.tm_min, parts.tm_sec), Qt::UTC);
}

} // namespace

std::optional<SigningServices::CertificateFacts>
SigningServices::certificateFacts(const SigningIdentity& identity) const {
    const std::optional<openssl::CertificateStack> certificates =
        IdentityFile::readCertificates(identity.secIdentity.filePath);
    if (!certificates || sk_X509_num(certificates->get()) < 1)
        return std::nullopt;
    X509* leaf = sk_X509_value(certificates->get(), 0);
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned int length = 0;
    if (X509_digest(leaf, EVP_sha256(), digest, &length) != 1)
        return std::nullopt;
    const QByteArray hex =
        QByteArray(reinterpret_cast<const char*>(digest), int(length)).toHex(':').toUpper();
    return CertificateFacts{QString::fromLatin1(hex), dateOf(X509_get0_notBefore(leaf)),
                            dateOf(X509_get0_notAfter(leaf))};
}

bool SigningServices::isTrusted(const SigningIdentity& identity) const {
    std::optional<openssl::CertificateStack> certificates =
        IdentityFile::readCertificates(identity.secIdentity.filePath);
    if (!certificates)
        return false;
    const CertificateTrust trust(anchorsFolder(), m_anchorFiles);
    return trust.isTrusted(sk_X509_value(certificates->get(), 0), certificates->get());
}

namespace {

// Archives exported by older keychains and many CAs encrypt with RC2 or
// 3DES, which OpenSSL 3 keeps in its legacy provider. Loading a provider by
// name turns off the implicit default one, so both are loaded, once.
// The handles are kept for the life of the process: the providers stay loaded.
void loadLegacyArchiveCiphers() {
    static OSSL_PROVIDER* const legacy = OSSL_PROVIDER_load(nullptr, "legacy");
    static OSSL_PROVIDER* const standard = OSSL_PROVIDER_load(nullptr, "default");
    (void)legacy;
    (void)standard;
    ERR_clear_error();
}

} // namespace

std::optional<SigningIdentity> SigningServices::importPKCS12(const QString& file, const QString& password,
                                                             const QString& newPassphrase) const {
    const std::optional<QByteArray> contents = readAll(file);
    if (!contents)
        return std::nullopt;
    return importPKCS12Data(*contents, password, newPassphrase);
}

std::optional<SigningIdentity> SigningServices::importPKCS12Data(const QByteArray& contents,
                                                                 const QString& password,
                                                                 const QString& newPassphrase) const {
    // An empty passphrase would leave OpenSSL to prompt, and the key unprotected.
    if (newPassphrase.isEmpty())
        return std::nullopt;
    loadLegacyArchiveCiphers();
    openssl::Bio in = openssl::memoryReader(contents);
    openssl::Pkcs12 archive(d2i_PKCS12_bio(in.get(), nullptr));
    EVP_PKEY* rawKey = nullptr;
    X509* rawCertificate = nullptr;
    STACK_OF(X509)* rawChain = nullptr;
    const bool parsed = archive && PKCS12_parse(archive.get(), password.toUtf8().constData(), &rawKey,
                                                &rawCertificate, &rawChain);
    ERR_clear_error();
    const openssl::Key key(rawKey);
    const openssl::Certificate certificate(rawCertificate);
    const openssl::CertificateStack chain(rawChain ? rawChain : sk_X509_new_null());
    if (!parsed || !key || !certificate)
        return std::nullopt;

    if (!QDir().mkpath(identitiesFolder()))
        return std::nullopt;
    const QString path = QDir(identitiesFolder()).filePath(fingerprintFileName(certificate.get()));
    if (!IdentityFile::write(path, certificate.get(), chain.get(), key.get(), newPassphrase.toUtf8()))
        return std::nullopt;
    SigningIdentity identity{IdentityFile::commonName(certificate.get()).value_or(unknownName()), {path}};
    identity.isTrusted = isTrusted(identity);
    return identity;
}

std::optional<QByteArray> SigningServices::encodeSignedMessage(const QByteArray& data,
                                                               const SigningIdentity& identity) const {
    const QString path = identity.secIdentity.filePath;
    std::optional<openssl::CertificateStack> certificates = IdentityFile::readCertificates(path);
    if (!certificates)
        return std::nullopt;
    X509* signer = sk_X509_value(certificates->get(), 0);
    const openssl::Key key = IdentityFile::readKey(path, m_passphrases, identity.name);
    if (!key || X509_check_private_key(signer, key.get()) != 1) {
        ERR_clear_error();
        return std::nullopt;
    }
    const CertificateTrust trust(anchorsFolder(), m_anchorFiles);
    const std::optional<openssl::CertificateStack> verified =
        trust.verifiedChain(signer, certificates->get());
    const QList<X509*> chain = certificatesToEmbed(certificates->get(), verified ? verified->get() : nullptr);
    std::optional<QByteArray> message = signedData(data, signer, key.get(), chain);
    ERR_clear_error();
    return message;
}

QString SigningServices::signedMessageFault(const QByteArray& data) const {
    ERR_clear_error();
    openssl::Bio der = openssl::memoryReader(data);
    const openssl::Cms cms(d2i_CMS_bio(der.get(), nullptr));
    if (!cms) {
        const unsigned long error = ERR_peek_last_error();
        const char* reason = error ? ERR_reason_error_string(error) : nullptr;
        ERR_clear_error();
        if (data.startsWith("-----BEGIN") && readCms(data))
            return {};
        return QStringLiteral("the CMS message can't be decoded: %1")
            .arg(reason ? QString::fromUtf8(reason) : QStringLiteral("not DER"));
    }
    if (OBJ_obj2nid(CMS_get0_type(cms.get())) != NID_pkcs7_signed)
        return QStringLiteral("the CMS message is not signed data");
    if (!embeddedContent(cms.get()))
        return QStringLiteral("the CMS signed message carries no content");
    const int signerCount = sk_CMS_SignerInfo_num(CMS_get0_SignerInfos(cms.get()));
    if (signerCount <= 0)
        return QStringLiteral("the CMS signed message has no signer");
    if (signerCount > maximumSigners)
        return QStringLiteral("the CMS signed message has %1 signers, more than %2")
            .arg(signerCount)
            .arg(maximumSigners);
    const openssl::CertificateStack embedded(CMS_get1_certs(cms.get()));
    if (sk_X509_num(embedded.get()) > maximumCertificates)
        return QStringLiteral("the CMS signed message carries %1 certificates, more than %2")
            .arg(sk_X509_num(embedded.get()))
            .arg(maximumCertificates);
    return {};
}

std::optional<SignedMessage> SigningServices::decodeSignedMessage(const QByteArray& data) const {
    const openssl::Cms cms = readCms(data);
    if (!cms)
        return std::nullopt;
    std::optional<QByteArray> content = embeddedContent(cms.get());
    STACK_OF(CMS_SignerInfo)* infos = CMS_get0_SignerInfos(cms.get());
    const int signerCount = sk_CMS_SignerInfo_num(infos);
    // A signed message without a signer isn't a signed profile. Matching
    // signers with certificates and checking each chain costs their product,
    // so a message with far more of either than any signer needs is refused.
    if (!content || signerCount <= 0 || signerCount > maximumSigners)
        return std::nullopt;
    const openssl::CertificateStack embedded(CMS_get1_certs(cms.get()));
    if (sk_X509_num(embedded.get()) > maximumCertificates)
        return std::nullopt;
    CMS_set1_signers_certs(cms.get(), nullptr, 0);
    const CertificateTrust trust(anchorsFolder(), m_anchorFiles);
    const ContentDigests digests(cms.get());
    SignedMessage message{*content, {}, {}};
    for (int index = 0; index < sk_CMS_SignerInfo_num(infos); ++index) {
        SignerVerification signer =
            verifySigner(sk_CMS_SignerInfo_value(infos, index), digests, trust, embedded.get());
        if (!signer.commonName.isEmpty())
            message.signerCommonNames.append(signer.commonName);
        message.signers.append(signer);
    }
    ERR_clear_error();
    return message;
}

} // namespace quorlin
