#include "ProgramFiles.h"
#include "SignatureBlobBuilder.h"

#include "../documents/TestPki.h"
#include "apptools/CodeSignature.h"
#include "apptools/MachOFile.h"
#include "apptools/SignerCertificates.h"
#include "support/TestSupport.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace quorlin::apptools;
using namespace quorlin::test;

namespace {

const QByteArray kEntitlementsXml = readFile(testDataPath(QStringLiteral("apptools/entitlements.plist")));

QByteArray der(uchar tag, const QByteArray& content) {
    QByteArray length =
        content.size() < 0x80
            ? QByteArray(1, char(content.size()))
            : QByteArray::fromHex("82") + ProgramFiles::bigEndianWord(quint32(content.size())).right(2);
    return char(tag) + length + content;
}

QByteArray derPair(const QByteArray& key, const QByteArray& value) {
    return der(0x30, der(0x0C, key) + value);
}

// {"com.apple.developer.team-identifier": "QRLN123456", "keychain-access-groups": ["QRLN123456.*"],
//  "com.apple.security.get-task-allow": false, "limits": {"count": 300}}
QByteArray derEntitlements() {
    const QByteArray pairs =
        derPair("com.apple.developer.team-identifier", der(0x0C, "QRLN123456")) +
        derPair("com.apple.security.get-task-allow", der(0x01, QByteArray(1, '\0'))) +
        derPair("keychain-access-groups", der(0x30, der(0x0C, "QRLN123456.*"))) +
        derPair("limits", der(0xB0, derPair("count", der(0x02, QByteArray::fromHex("012c")))));
    return der(0x70, der(0x02, QByteArray(1, '\1')) + der(0xB0, pairs));
}

struct Pki {
    TestCertificate root = TestPki::issue(QStringLiteral("Quorlin Test Root"), nullptr, true);
    TestCertificate intermediate = TestPki::issue(QStringLiteral("Quorlin Test Developer CA"), &root, true);
    TestCertificate leaf = TestPki::issue(
        QStringLiteral("Developer ID Application: Quorlin Tests (QRLN123456)"), &intermediate, false);
};

QStringList commonNames(const QList<QByteArray>& certificates) {
    QStringList names;
    for (const QByteArray& certificate : certificates)
        names << SignerCertificates::commonName(certificate).value_or(QString());
    return names;
}

QByteArray designatedRequirement() {
    using namespace requirement;
    return both(both(identifier("com.quorlin.sample"), appleGenericAnchor()),
                certificateField(0, "subject.OU", equals("QRLN123456")));
}

} // namespace

TEST(CodeSignatureTest, ReadsTheAdHocSignatureTheLinkerWrites) {
    ASSERT_FALSE(ProgramFiles::arm64().isEmpty()) << "clang and ld64.lld are needed";
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("sample"));
    ASSERT_TRUE(ProgramFiles::write(path, ProgramFiles::arm64()));
    const auto file = MachOFile::read(path);
    const auto blob = file->codeSignature(*file->preferredSlice());
    ASSERT_TRUE(blob);
    const auto signature = CodeSignature::parse(*blob);
    ASSERT_TRUE(signature);
    EXPECT_EQ(signature->identifier(), QStringLiteral("sample-arm64"));
    EXPECT_TRUE(signature->isAdHoc());
    EXPECT_EQ(signature->teamIdentifier(), std::nullopt);
    EXPECT_TRUE(signature->certificates().isEmpty());
    EXPECT_EQ(signature->developerName(), std::nullopt);
    EXPECT_EQ(signature->entitlements(), std::nullopt);
    // An ad hoc build is known by its own hash, the first 20 bytes of the
    // SHA-256 of its code directory.
    const auto requirement = signature->designatedRequirement();
    ASSERT_TRUE(requirement);
    EXPECT_TRUE(requirement->startsWith(QLatin1String("cdhash H\""))) << requirement->toStdString();
    EXPECT_EQ(requirement->size(), 9 + 40 + 1);
}

TEST(CodeSignatureTest, ReadsIdentifierTeamRequirementEntitlementsAndSignerChain) {
    const Pki pki;
    SignatureParts parts;
    parts.identifier = QStringLiteral("com.quorlin.sample");
    parts.teamIdentifier = QStringLiteral("QRLN123456");
    parts.flags = CodeSignature::runtimeFlag;
    parts.designatedRequirement = designatedRequirement();
    parts.entitlementsXml = kEntitlementsXml;
    parts.entitlementsDer = derEntitlements();
    parts.signer = pki.leaf.certificate.get();
    parts.signerKey = pki.leaf.key.get();
    // Stored out of order: the chain is put in order by who issued whom.
    parts.storedCertificates = {pki.root.certificate.get(), pki.leaf.certificate.get(),
                                pki.intermediate.certificate.get()};

    const auto signature = CodeSignature::parse(embeddedSignature(parts));
    ASSERT_TRUE(signature);
    EXPECT_EQ(signature->identifier(), QStringLiteral("com.quorlin.sample"));
    EXPECT_EQ(signature->teamIdentifier(), QStringLiteral("QRLN123456"));
    EXPECT_EQ(signature->flags(), CodeSignature::runtimeFlag);
    EXPECT_FALSE(signature->isAdHoc());
    EXPECT_EQ(signature->designatedRequirement(),
              QStringLiteral(R"(identifier "com.quorlin.sample" and anchor apple generic and )"
                             R"(certificate leaf[subject.OU] = QRLN123456)"));
    ASSERT_TRUE(signature->entitlements());
    EXPECT_EQ(signature->entitlements()->keys(),
              (QStringList{"com.apple.security.app-sandbox", "com.apple.security.network.client"}))
        << "the XML form is preferred";
    EXPECT_EQ(signature->developerName(),
              QStringLiteral("Developer ID Application: Quorlin Tests (QRLN123456)"));
    ASSERT_EQ(signature->certificates().size(), 3);
    EXPECT_EQ(commonNames(signature->certificates()),
              (QStringList{"Developer ID Application: Quorlin Tests (QRLN123456)",
                           "Quorlin Test Developer CA", "Quorlin Test Root"}));

    parts.entitlementsXml.reset();
    const auto derOnly = CodeSignature::parse(embeddedSignature(parts));
    ASSERT_TRUE(derOnly && derOnly->entitlements());
    const quorlin::plist::Dictionary expected{
        {"com.apple.developer.team-identifier", "QRLN123456"},
        {"com.apple.security.get-task-allow", false},
        {"keychain-access-groups", quorlin::plist::Array{"QRLN123456.*"}},
        {"limits", quorlin::plist::Dictionary{{"count", 300}}}};
    EXPECT_EQ(*derOnly->entitlements(), expected);
}

TEST(CodeSignatureTest, RefusesBlobsWhoseOffsetsOrLengthsDoNotHoldTogether) {
    const QByteArray directory =
        codeDirectory(QStringLiteral("com.quorlin.sample"), QStringLiteral("QRLN123456"), 0);
    const QByteArray good = superBlob({{0, directory}});
    ASSERT_TRUE(CodeSignature::parse(good));

    const auto patched = [](QByteArray bytes, qsizetype at, quint32 word) {
        return bytes.replace(at, 4, ProgramFiles::bigEndianWord(word));
    };
    const qsizetype cd = 20; // where the code directory starts in the one-blob signature
    const struct {
        const char* name;
        QByteArray bytes;
    } cases[] = {
        {"empty", {}},
        {"other magic", patched(good, 0, 0xFADE0C01)},
        {"length past the end", patched(good, 4, quint32(good.size() + 1))},
        {"count past the index", patched(good, 8, 0x10000000)},
        {"blob offset past the end", patched(good, 16, quint32(good.size()))},
        {"blob length past the end", patched(good, cd + 4, 0x7FFFFFFF)},
        {"identifier offset past the directory", patched(good, cd + 20, 0xFFFF)},
        {"code directory cut short", superBlob({{0, directory.left(60)}})},
        {"no code directory", superBlob({{2, requirement::set({})}})},
        {"unknown hash type", patched(good, cd + 36, 0x20090c00)},
    };
    for (const auto& c : cases)
        EXPECT_FALSE(CodeSignature::parse(c.bytes)) << c.name;
}
