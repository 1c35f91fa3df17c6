#include "documents/IdentityFile.h"

#include "documents/PassphraseProvider.h"

#include <openssl/err.h>
#include <openssl/pem.h>

#include <QFile>
#include <QSaveFile>

#include <cstring>

namespace quorlin {

namespace {

struct PassphraseRequest {
    PassphraseProvider* provider;
    QString name;
};

int providePassphrase(char* buffer, int size, int /*rwflag*/, void* userData) {
    const auto* request = static_cast<PassphraseRequest*>(userData);
    if (!request->provider)
        return -1;
    const std::optional<QString> passphrase = request->provider->passphraseFor(request->name);
    if (!passphrase)
        return -1;
    const QByteArray bytes = passphrase->toUtf8();
    if (bytes.size() > size)
        return -1;
    std::memcpy(buffer, bytes.constData(), static_cast<size_t>(bytes.size()));
    return static_cast<int>(bytes.size());
}

// Without a callback OpenSSL would prompt on the terminal: refuse instead.
int refusePassphrase(char*, int, int, void*) {
    return -1;
}

bool writeCertificates(BIO* out, X509* leaf, STACK_OF(X509) * chain) {
    if (!PEM_write_bio_X509(out, leaf))
        return false;
    for (int index = 0; index < sk_X509_num(chain); ++index) {
        if (!PEM_write_bio_X509(out, sk_X509_value(chain, index)))
            return false;
    }
    return true;
}

bool saveFile(const QString& path, const QByteArray& contents) {
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    // Set on the temporary file before any byte of the key reaches the disk.
    if (!file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner))
        return false;
    if (file.write(contents) != contents.size())
        return false;
    return file.commit();
}

} // namespace

std::optional<openssl::CertificateStack> IdentityFile::readCertificates(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QByteArray contents = file.readAll();
    openssl::Bio in = openssl::memoryReader(contents);
    openssl::CertificateStack certificates(sk_X509_new_null());
    // PEM reading skips blocks of other kinds, so the key is passed over unread.
    while (X509* certificate = PEM_read_bio_X509(in.get(), nullptr, refusePassphrase, nullptr))
        sk_X509_push(certificates.get(), certificate);
    ERR_clear_error();
    if (sk_X509_num(certificates.get()) == 0)
        return std::nullopt;
    return certificates;
}

openssl::Key IdentityFile::readKey(const QString& path, PassphraseProvider* passphrases,
                                   const QString& name) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray contents = file.readAll();
    openssl::Bio in = openssl::memoryReader(contents);
    PassphraseRequest request{passphrases, name};
    openssl::Key key(PEM_read_bio_PrivateKey(in.get(), nullptr, providePassphrase, &request));
    ERR_clear_error();
    return key;
}

bool IdentityFile::write(const QString& path, X509* leaf, STACK_OF(X509) * chain, EVP_PKEY* key,
                         const QByteArray& passphrase) {
    openssl::Bio out(BIO_new(BIO_s_mem()));
    if (!writeCertificates(out.get(), leaf, chain))
        return false;
    if (!PEM_write_bio_PKCS8PrivateKey(out.get(), key, EVP_aes_256_cbc(), passphrase.constData(),
                                       static_cast<int>(passphrase.size()), nullptr, nullptr))
        return false;
    return saveFile(path, openssl::memoryContents(out.get()));
}

std::optional<QString> IdentityFile::commonName(X509* certificate) {
    const X509_NAME* subject = X509_get_subject_name(certificate);
    const int index = X509_NAME_get_index_by_NID(subject, NID_commonName, -1);
    if (index < 0)
        return std::nullopt;
    const ASN1_STRING* data = X509_NAME_ENTRY_get_data(X509_NAME_get_entry(subject, index));
    unsigned char* utf8 = nullptr;
    const int length = ASN1_STRING_to_UTF8(&utf8, data);
    if (length < 0)
        return std::nullopt;
    QString name = QString::fromUtf8(reinterpret_cast<const char*>(utf8), length);
    OPENSSL_free(utf8);
    return name;
}

} // namespace quorlin
