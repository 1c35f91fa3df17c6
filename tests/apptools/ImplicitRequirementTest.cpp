#include "ProgramFiles.h"
#include "SignatureBlobBuilder.h"

#include "../documents/TestPki.h"
#include "apptools/AppBundle.h"
#include "apptools/ImplicitRequirement.h"

#include <QCryptographicHash>
#include <QTemporaryDir>

#include <openssl/x509v3.h>

#include <gtest/gtest.h>

using namespace quorlin::apptools;
using namespace quorlin::test;

namespace {

// A certificate of the test PKI (organisation "Quorlin Tests"), given one
// of Apple's marker extensions, a team, or no organisation, and signed again.
QByteArray der(const TestCertificate& made, const TestCertificate& issuer, const char* marker = nullptr,
               const char* team = nullptr, bool organisation = true) {
    X509* certificate = made.certificate.get();
    X509_NAME* subject = X509_get_subject_name(certificate);
    if (marker) {
        ASN1_OBJECT* oid = OBJ_txt2obj(marker, 1);
        ASN1_OCTET_STRING* null = ASN1_OCTET_STRING_new();
        ASN1_OCTET_STRING_set(null, reinterpret_cast<const unsigned char*>("\x05\x00"), 2);
        X509_EXTENSION* extension = X509_EXTENSION_create_by_OBJ(nullptr, oid, 0, null);
        X509_add_ext(certificate, extension, -1);
        X509_EXTENSION_free(extension);
        ASN1_OCTET_STRING_free(null);
        ASN1_OBJECT_free(oid);
    }
    if (team)
        X509_NAME_add_entry_by_txt(subject, "OU", MBSTRING_UTF8, reinterpret_cast<const unsigned char*>(team),
                                   -1, -1, 0);
    if (!organisation)
        X509_NAME_ENTRY_free(
            X509_NAME_delete_entry(subject, X509_NAME_get_index_by_NID(subject, NID_organizationName, -1)));
    // Signing again changes an EC signature: only a changed certificate is.
    if (marker || team || !organisation)
        X509_sign(certificate, issuer.key.get(), EVP_sha256());
    unsigned char* bytes = nullptr;
    const int length = i2d_X509(certificate, &bytes);
    const QByteArray encoded(reinterpret_cast<const char*>(bytes), length);
    OPENSSL_free(bytes);
    return encoded;
}

QString anchor(const char* slot, const QByteArray& certificate) {
    return QStringLiteral(R"(identifier "com.quorlin.sample" and certificate %1 = H"%2")")
        .arg(QLatin1String(slot),
             QString::fromLatin1(QCryptographicHash::hash(certificate, QCryptographicHash::Sha1).toHex()));
}

} // namespace

TEST(ImplicitRequirementTest, FollowsTheKindOfChainTheSignerHas) {
    const auto issue = [](const char* name, const TestCertificate* issuer) {
        return TestPki::issue(QString::fromLatin1(name), issuer, true);
    };
    const TestCertificate root = issue("Root", nullptr), other = issue("Other Root", nullptr),
                          stranger = issue("Stranger Root", nullptr);
    const TestCertificate devIdCa = issue("Developer ID CA", &root), devId = issue("Developer ID", &devIdCa),
                          wwdr = issue("WWDR", &root),
                          development = issue("Apple Development: Quorlin", &wwdr),
                          own = issue("Software Signing", &root), ownCa = issue("Signing CA", &other),
                          leaf = issue("Build", &ownCa), bare = issue("Bare Build", &ownCa);
    const QByteArray rootDer = der(root, root), otherDer = der(other, other), ownCaDer = der(ownCa, other),
                     leafDer = der(leaf, ownCa), bareDer = der(bare, ownCa, nullptr, nullptr, false),
                     strangerDer = der(stranger, stranger, nullptr, nullptr, false);
    const QString ident = QStringLiteral(R"(identifier "com.quorlin.sample" and )");
    const struct {
        const char* name;
        QList<QByteArray> chain;
        std::optional<QString> expected;
    } cases[] = {
        {"Developer ID",
         {der(devId, devIdCa, "1.2.840.113635.100.6.1.13", "QRLN123456"),
          der(devIdCa, root, "1.2.840.113635.100.6.2.6"), rootDer},
         ident + "anchor apple generic and certificate 1[field.1.2.840.113635.100.6.2.6] /* exists */ and "
                 "certificate leaf[field.1.2.840.113635.100.6.1.13] /* exists */ and "
                 "certificate leaf[subject.OU] = QRLN123456"},
        {"development",
         {der(development, wwdr), der(wwdr, root, "1.2.840.113635.100.6.2.1"), rootDer},
         ident +
             R"(anchor apple generic and certificate leaf[subject.CN] = "Apple Development: Quorlin" and )"
             "certificate 1[field.1.2.840.113635.100.6.2.1] /* exists */"},
        {"Apple's own", {der(own, root), rootDer}, ident + "anchor apple"},
        {"one organisation up to the root", {leafDer, ownCaDer, otherDer}, anchor("root", otherDer)},
        {"a root of another organisation", {leafDer, ownCaDer, strangerDer}, anchor("1", ownCaDer)},
        {"a leaf of no organisation", {bareDer, ownCaDer, otherDer}, anchor("leaf", bareDer)},
        {"no certificates", {}, std::nullopt},
    };
    const QList<QByteArray> apple{QCryptographicHash::hash(rootDer, QCryptographicHash::Sha1)};
    for (const auto& example : cases)
        EXPECT_EQ(ImplicitRequirement::make(QStringLiteral("com.quorlin.sample"), example.chain, apple),
                  example.expected)
            << example.name;

    // A program file whose signature states none shows the one made up.
    ASSERT_FALSE(ProgramFiles::arm64().isEmpty()) << "clang and ld64.lld are needed";
    SignatureParts parts{QStringLiteral("com.quorlin.sample"),
                         {},
                         0,
                         {},
                         {},
                         {},
                         leaf.certificate.get(),
                         leaf.key.get(),
                         {ownCa.certificate.get(), leaf.certificate.get(), other.certificate.get()}};
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("sample"));
    ASSERT_TRUE(ProgramFiles::write(
        path, ProgramFiles::withSignature(ProgramFiles::arm64(), embeddedSignature(parts))));
    const auto bundle = AppBundle::create(path);
    ASSERT_TRUE(bundle);
    EXPECT_EQ(bundle->codeRequirement(), anchor("root", otherDer));
}
