#include "ProgramFiles.h"
#include "SignatureBlobBuilder.h"

#include "../documents/TestPki.h"
#include "apptools/AppBundle.h"
#include "apptools/CodeSignature.h"
#include "apptools/ImplicitRequirement.h"

#include <QCryptographicHash>
#include <QTemporaryDir>

#include <openssl/x509v3.h>

#include <gtest/gtest.h>

using namespace quorlin::apptools;
using namespace quorlin::test;

namespace {

const char* const developerIdIntermediate = "1.2.840.113635.100.6.2.6";
const char* const developerIdLeaf = "1.2.840.113635.100.6.1.13";
const char* const worldwideDeveloperIntermediate = "1.2.840.113635.100.6.2.1";

struct Changes {
    QList<const char*> markers;
    const char* team = nullptr;
    bool withoutOrganisation = false;
};

// A certificate of the test PKI with Apple's marker extensions, a team, or
// no organisation, signed again by its issuer.
QByteArray der(const TestCertificate& made, const TestCertificate* issuer, const Changes& changes = {}) {
    X509* certificate = made.certificate.get();
    for (const char* oid : changes.markers) {
        ASN1_OBJECT* object = OBJ_txt2obj(oid, 1);
        ASN1_OCTET_STRING* empty = ASN1_OCTET_STRING_new();
        ASN1_OCTET_STRING_set(empty, reinterpret_cast<const unsigned char*>("\x05\x00"), 2);
        X509_EXTENSION* extension = X509_EXTENSION_create_by_OBJ(nullptr, object, 0, empty);
        X509_add_ext(certificate, extension, -1);
        X509_EXTENSION_free(extension);
        ASN1_OCTET_STRING_free(empty);
        ASN1_OBJECT_free(object);
    }
    X509_NAME* subject = X509_get_subject_name(certificate);
    if (changes.team)
        X509_NAME_add_entry_by_txt(subject, "OU", MBSTRING_UTF8,
                                   reinterpret_cast<const unsigned char*>(changes.team), -1, -1, 0);
    if (changes.withoutOrganisation)
        X509_NAME_ENTRY_free(
            X509_NAME_delete_entry(subject, X509_NAME_get_index_by_NID(subject, NID_organizationName, -1)));
    // Signing again changes an EC signature: only a changed certificate is.
    if (!changes.markers.isEmpty() || changes.team || changes.withoutOrganisation)
        X509_sign(certificate, (issuer ? issuer : &made)->key.get(), EVP_sha256());
    unsigned char* bytes = nullptr;
    const int length = i2d_X509(certificate, &bytes);
    QByteArray encoded(reinterpret_cast<const char*>(bytes), length);
    OPENSSL_free(bytes);
    return encoded;
}

QString hashOf(const QByteArray& certificate) {
    return QString::fromLatin1(QCryptographicHash::hash(certificate, QCryptographicHash::Sha1).toHex());
}

} // namespace

TEST(ImplicitRequirementTest, FollowsTheKindOfChainTheSignerHas) {
    const TestCertificate root = TestPki::issue(QStringLiteral("Root CA"), nullptr, true);
    const TestCertificate other = TestPki::issue(QStringLiteral("Other Root CA"), nullptr, true);
    const auto issued = [](const QString& name, const TestCertificate& issuer, bool authority) {
        return TestPki::issue(name, &issuer, authority);
    };
    const QByteArray rootDer = der(root, nullptr);
    const QList<QByteArray> apple{QCryptographicHash::hash(rootDer, QCryptographicHash::Sha1)};

    const TestCertificate devIdCa = issued("Developer ID Certification Authority", root, true);
    const TestCertificate devId =
        issued("Developer ID Application: Quorlin Tests (QRLN123456)", devIdCa, false);
    const TestCertificate wwdr = issued("Worldwide Developer Relations", root, true);
    const TestCertificate development = issued("Apple Development: Quorlin Tests (QRLN123456)", wwdr, false);
    const TestCertificate appleOwn = issued("Software Signing", root, false);
    const TestCertificate noTeamCa = issued("Developer ID Certification Authority", root, true);
    const TestCertificate noTeam = issued("Developer ID Application: Nobody", noTeamCa, false);
    // Another root, and an intermediate of the leaf's own organisation or not.
    const QByteArray otherDer = der(other, nullptr);
    const TestCertificate ownCa = issued("Quorlin Signing CA", other, true);
    const QByteArray ownCaDer = der(ownCa, &other);
    const TestCertificate ownLeaf = issued("Quorlin Build", ownCa, false);
    const QByteArray ownLeafDer = der(ownLeaf, &ownCa);
    const TestCertificate bareLeaf = issued("Bare Build", ownCa, false);
    const QByteArray bareLeafDer = der(bareLeaf, &ownCa, {{}, nullptr, true});
    const QByteArray rootOfOthers =
        der(TestPki::issue(QStringLiteral("Third Party Root"), nullptr, true), nullptr, {{}, nullptr, true});

    const QString ident = QStringLiteral(R"(identifier "com.quorlin.sample" and )");
    const struct {
        const char* name;
        QList<QByteArray> chain;
        std::optional<QString> expected;
    } cases[] = {
        {"Developer ID",
         {der(devId, &devIdCa, {{developerIdLeaf}, "QRLN123456"}),
          der(devIdCa, &root, {{developerIdIntermediate}}), rootDer},
         ident + "anchor apple generic and certificate 1[field.1.2.840.113635.100.6.2.6] /* exists */ and "
                 "certificate leaf[field.1.2.840.113635.100.6.1.13] /* exists */ and "
                 "certificate leaf[subject.OU] = QRLN123456"},
        {"development",
         {der(development, &wwdr), der(wwdr, &root, {{worldwideDeveloperIntermediate}}), rootDer},
         ident +
             R"x(anchor apple generic and certificate leaf[subject.CN] = "Apple Development: )x"
             R"x(Quorlin Tests (QRLN123456)" and certificate 1[field.1.2.840.113635.100.6.2.1] /* exists */)x"},
        {"Apple's own", {der(appleOwn, &root), rootDer}, ident + "anchor apple"},
        {"Developer ID without a team",
         {der(noTeam, &noTeamCa), der(noTeamCa, &root, {{developerIdIntermediate}}), rootDer},
         std::nullopt},
        {"one organisation up to the root",
         {ownLeafDer, ownCaDer, otherDer},
         ident + QStringLiteral(R"(certificate root = H"%1")").arg(hashOf(otherDer))},
        {"another organisation's root",
         {ownLeafDer, ownCaDer, rootOfOthers},
         ident + QStringLiteral(R"(certificate 1 = H"%1")").arg(hashOf(ownCaDer))},
        {"a leaf of no organisation",
         {bareLeafDer, ownCaDer, otherDer},
         ident + QStringLiteral(R"(certificate leaf = H"%1")").arg(hashOf(bareLeafDer))},
        {"no certificates", {}, std::nullopt},
    };
    for (const auto& example : cases)
        EXPECT_EQ(ImplicitRequirement::make(QStringLiteral("com.quorlin.sample"), example.chain, apple),
                  example.expected)
            << example.name;
}

TEST(ImplicitRequirementTest, ASignatureWithoutARequirementShowsTheImplicitOne) {
    ASSERT_FALSE(ProgramFiles::arm64().isEmpty()) << "clang and ld64.lld are needed";
    const TestCertificate root = TestPki::issue(QStringLiteral("Quorlin Test Root"), nullptr, true);
    const TestCertificate leaf = TestPki::issue(QStringLiteral("Quorlin Build"), &root, false);
    SignatureParts parts;
    parts.identifier = QStringLiteral("com.quorlin.sample");
    parts.signer = leaf.certificate.get();
    parts.signerKey = leaf.key.get();
    parts.storedCertificates = {root.certificate.get(), leaf.certificate.get()};
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("sample"));
    ASSERT_TRUE(ProgramFiles::write(
        path, ProgramFiles::withSignature(ProgramFiles::arm64(), embeddedSignature(parts))));
    const auto bundle = AppBundle::create(path);
    ASSERT_TRUE(bundle);
    EXPECT_EQ(bundle->codeRequirement(),
              QStringLiteral(R"(identifier "com.quorlin.sample" and certificate root = H"%1")")
                  .arg(hashOf(der(root, nullptr))));
}
