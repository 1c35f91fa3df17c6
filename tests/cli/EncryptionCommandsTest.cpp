#include "ProfileToolTest.h"

#include "documents/TestPki.h"

#include <QProcess>

using namespace quorlin;
using quorlin::test::KeyType;
using quorlin::test::ProfileToolTest;
using quorlin::test::TestCertificate;
using quorlin::test::TestPki;
using quorlin::test::ToolRun;

namespace {

const QString kDevice = QStringLiteral("Quorlin CLI Device");
const QString kSigner = QStringLiteral("Quorlin CLI Signer");
const QString kRelay = QStringLiteral("com.quorlin.test.relay");

// A device whose identity the user holds, another whose certificate alone
// they have, and a signer; the PKI is made at run time.
class EncryptionCommandsTest : public ProfileToolTest {
protected:
    void SetUp() override {
        ProfileToolTest::SetUp();
        writeFile("device.pem", TestPki::pem(device.certificate.get()));
        writeFile("other.pem", TestPki::pem(other.certificate.get()));
        writeFile("other.key", TestPki::unencryptedKeyPem(other.key.get()));
        for (const auto* identity : {&device, &signer})
            ASSERT_EQ(test::importIdentity(m_tool, *identity, {authority.certificate.get()}).exitCode, 0);
        plain = newProfile("relay.mobileconfig", {kRelay});
        editPayload(plain, 0,
                    [](plist::Dictionary& payload) { payload.insert("Host", "relay.example.com"); });
        ASSERT_EQ(run({"format", "relay.mobileconfig"}).exitCode, 0);
    }

    ToolRun withPassphrase(QStringList arguments) const {
        return run(arguments << "--passphrase-file"
                             << "passphrase.txt");
    }
    // The payload array that `openssl cms -decrypt` finds in a sealed profile, for the other device.
    plist::Value openedByOpenSsl(const QString& sealedProfile) const {
        writeFile("sealed.der", *readDictionary(m_tool.path(sealedProfile)).data("EncryptedPayloadContent"));
        QProcess openssl;
        openssl.setWorkingDirectory(m_tool.path(QStringLiteral(".")));
        openssl.start("openssl", {"cms", "-decrypt", "-binary", "-inform", "DER", "-in", "sealed.der",
                                  "-recip", "other.pem", "-inkey", "other.key"});
        EXPECT_TRUE(openssl.waitForFinished(60000));
        EXPECT_EQ(openssl.exitCode(), 0) << openssl.readAllStandardError().toStdString();
        const auto read = plist::PlistReader::read(openssl.readAllStandardOutput());
        return read ? read->root : plist::Value();
    }

    TestCertificate authority = TestPki::issue(QStringLiteral("Quorlin CLI Authority"), nullptr, true);
    TestCertificate device = TestPki::issue(kDevice, &authority, false, {}, KeyType::rsa);
    TestCertificate other =
        TestPki::issue(QStringLiteral("Other Device"), &authority, false, {}, KeyType::rsa);
    TestCertificate signer = TestPki::issue(kSigner, &authority, false);
    QString plain;
};

} // namespace

TEST_F(EncryptionCommandsTest, EncryptVerifyAndDecryptMakeTheRoundTrip) {
    const ToolRun sealed = run({"encrypt", "relay.mobileconfig", "--recipient", "device.pem", "--recipient",
                                "other.pem", "-o", "sealed.mobileconfig"});
    ASSERT_EQ(sealed.exitCode, 0) << sealed.error.toStdString();
    const plist::Dictionary sealedProfile = readDictionary(m_tool.path("sealed.mobileconfig"));
    EXPECT_FALSE(sealedProfile.contains("PayloadContent"));
    EXPECT_EQ(openedByOpenSsl("sealed.mobileconfig"), plist::Value(payloads(readDictionary(plain))));

    const ToolRun verified = m_tool.run({"verify", "sealed.mobileconfig"});
    EXPECT_EQ(verified.exitCode, 1) << "not signed";
    const QStringList said = test::lines(verified.output);
    ASSERT_EQ(said.size(), 3);
    EXPECT_TRUE(
        said[1].startsWith("sealed.mobileconfig: encrypted for CN=Quorlin CLI Authority,O=Quorlin Tests, "
                           "serial "))
        << said[1].toStdString();

    const ToolRun opened = withPassphrase(
        {"decrypt", "sealed.mobileconfig", "--identity", kDevice, "-o", "opened.mobileconfig"});
    ASSERT_EQ(opened.exitCode, 0) << opened.error.toStdString();
    EXPECT_EQ(test::readFile(m_tool.path("opened.mobileconfig")), test::readFile(plain));
}

TEST_F(EncryptionCommandsTest, SignAndFormatEncryptBeforeSigning) {
    const ToolRun signedRun = withPassphrase({"sign", "relay.mobileconfig", "--identity", kSigner,
                                              "--encrypt-for", "other.pem", "-o", "s.mobileconfig"});
    ASSERT_EQ(signedRun.exitCode, 0) << signedRun.error.toStdString();
    const QStringList said = test::lines(m_tool.run({"verify", "s.mobileconfig"}).output);
    ASSERT_EQ(said.size(), 2);
    EXPECT_TRUE(said[0].startsWith("s.mobileconfig: signed by “Quorlin CLI Signer”"));
    EXPECT_TRUE(said[1].startsWith("s.mobileconfig: encrypted for "));
    ASSERT_EQ(run({"unsign", "s.mobileconfig", "-o", "u.mobileconfig"}).exitCode, 0);
    EXPECT_EQ(openedByOpenSsl("u.mobileconfig"), plist::Value(payloads(readDictionary(plain))));

    const plist::Value original(payloads(readDictionary(plain)));
    const ToolRun formatted = run({"format", "relay.mobileconfig", "--encrypt-for", "other.pem"});
    EXPECT_EQ(formatted.exitCode, 0) << formatted.error.toStdString();
    EXPECT_EQ(openedByOpenSsl("relay.mobileconfig"), original);
}

TEST_F(EncryptionCommandsTest, BadRecipientsIdentitiesAndFilesAreRefusedByName) {
    writeFile("junk.pem", "junk");
    ASSERT_EQ(run({"encrypt", "relay.mobileconfig", "--recipient", "other.pem", "-o", "sealed.mobileconfig"})
                  .exitCode,
              0);
    struct Case {
        QStringList arguments;
        const char* message;
    };
    for (const Case& c : {
             Case{{"encrypt", "relay.mobileconfig", "-o", "x"}, "encrypt: no recipient given"},
             Case{{"encrypt", "relay.mobileconfig", "--recipient", "junk.pem", "-o", "x"},
                  "junk.pem: A recipient certificate could not be read"},
             Case{{"encrypt", "sealed.mobileconfig", "--recipient", "device.pem", "-o", "x"},
                  "sealed.mobileconfig: The payloads are still encrypted"},
             Case{{"decrypt", "sealed.mobileconfig", "--identity", kDevice, "-o", "x"},
                  "sealed.mobileconfig: cannot decrypt with “Quorlin CLI Device”: The payloads are not "
                  "encrypted "
                  "for this identity's certificate."},
             Case{{"decrypt", "relay.mobileconfig", "--identity", kDevice, "-o", "x"},
                  "relay.mobileconfig: the payloads are not encrypted"},
         }) {
        SCOPED_TRACE(c.arguments.join(u' ').toStdString());
        const ToolRun refused = withPassphrase(c.arguments);
        EXPECT_EQ(refused.exitCode, 2);
        EXPECT_TRUE(refused.error.contains(c.message)) << refused.error.toStdString();
    }
    EXPECT_FALSE(QFile::exists(m_tool.path("x")));
}
