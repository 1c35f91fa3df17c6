#include "ProfileToolTest.h"

#include "documents/TestPki.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

using namespace quorlin;
using quorlin::test::CertificateValidity;
using quorlin::test::importIdentity;
using quorlin::test::lines;
using quorlin::test::ProfileToolTest;
using quorlin::test::TestCertificate;
using quorlin::test::TestPki;
using quorlin::test::ToolRun;

namespace {

const QString kSigner = QStringLiteral("Quorlin CLI Signer");
const QString kRelay = QStringLiteral("com.quorlin.test.relay");

// Identities imported into the tool's own data folder, from a PKI made at run time.
class SigningCommandsTest : public ProfileToolTest {
protected:
    void SetUp() override {
        ProfileToolTest::SetUp();
        writeFile("password.txt", "p12 secret\n");
        writeFile("passphrase.txt", "store passphrase\n");
        writeFile("signer.p12", TestPki::pkcs12(leaf, chain(), "p12 secret"));
    }
    QList<X509*> chain() const { return {intermediate.certificate.get(), root.certificate.get()}; }

    ToolRun importSigner() const {
        return m_tool.run({"identity", "import", "signer.p12", "--password-file", "password.txt",
                           "--passphrase-file", "passphrase.txt"});
    }
    // Makes the test root an anchor of the tool's store, found beside its identities.
    void trustRoot() const {
        const QJsonArray identities =
            QJsonDocument::fromJson(m_tool.run({"identity", "list", "--json"}).output).array();
        ASSERT_FALSE(identities.isEmpty());
        QDir store = QFileInfo(identities.first().toObject()["file"].toString()).dir();
        ASSERT_TRUE(store.cdUp());
        ASSERT_TRUE(store.mkpath("anchors"));
        QFile anchor(store.filePath("anchors/root.pem"));
        ASSERT_TRUE(anchor.open(QIODevice::WriteOnly));
        anchor.write(TestPki::pem(root.certificate.get()));
    }
    // A relay profile in the editor's form, with nothing to find.
    QString goodProfile(const QString& name) const {
        const QString path = newProfile(name, {kRelay});
        editPayload(path, 0, [](plist::Dictionary& payload) { payload.insert("Host", "relay.example.com"); });
        EXPECT_EQ(run({"format", name}).exitCode, 0);
        return path;
    }
    ToolRun sign(const QString& input, const QString& output) const {
        return run(
            {"sign", input, "--identity", kSigner, "-o", output, "--passphrase-file", "passphrase.txt"});
    }
    static int openSslVerify(const QString& signedFile, const QString& rootFile) {
        QProcess process;
        process.start("openssl", {"cms", "-verify", "-inform", "DER", "-in", signedFile, "-CAfile", rootFile,
                                  "-out", QProcess::nullDevice()});
        if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit)
            return -1;
        return process.exitCode();
    }

    TestCertificate root = TestPki::issue(QStringLiteral("Quorlin CLI Root"), nullptr, true);
    TestCertificate intermediate = TestPki::issue(QStringLiteral("Quorlin CLI Intermediate"), &root, true);
    TestCertificate leaf = TestPki::issue(kSigner, &intermediate, false);
};

} // namespace

TEST_F(SigningCommandsTest, IdentityImportTakesItsSecretsFromFilesAndListsTheIdentity) {
    EXPECT_TRUE(m_tool.run({"identity", "list"}).output.isEmpty()) << "a fresh store";
    const ToolRun imported = importSigner();
    EXPECT_EQ(imported.exitCode, 0) << imported.error.toStdString();
    EXPECT_EQ(imported.output, "Imported “Quorlin CLI Signer” (untrusted)\n");

    const QStringList listed = lines(m_tool.run({"identity", "list"}).output);
    ASSERT_EQ(listed.size(), 1);
    EXPECT_TRUE(listed.first().startsWith(kSigner + "\tuntrusted\t" + m_tool.dataFolder()))
        << "stored in the data folder the tool was given: " << listed.first().toStdString();
    trustRoot();
    EXPECT_TRUE(lines(m_tool.run({"identity", "list"}).output).first().startsWith(kSigner + "\ttrusted\t"));
}

TEST_F(SigningCommandsTest, IdentityImportRefusesWrongAndMissingSecrets) {
    writeFile("wrong.txt", "not the password\n");
    writeFile("empty.txt", "\n");
    struct Case {
        QStringList arguments;
        const char* message;
    };
    for (const Case& c : {
             Case{{"--password-file", "wrong.txt", "--passphrase-file", "passphrase.txt"},
                  "signer.p12: cannot import: wrong password"},
             Case{{"--password-file", "password.txt", "--passphrase-file", "empty.txt"},
                  "signer.p12: the key's new passphrase must not be empty"},
             Case{{"--passphrase-file", "passphrase.txt"}, "signer.p12: no password: no terminal to ask at"},
             Case{{"--password-file", "gone.txt", "--passphrase-file", "passphrase.txt"},
                  "signer.p12: no password: gone.txt: cannot open: No such file or directory"},
         }) {
        SCOPED_TRACE(c.arguments.join(u' ').toStdString());
        const ToolRun imported = m_tool.run(QStringList{"identity", "import", "signer.p12"} + c.arguments);
        EXPECT_EQ(imported.exitCode, 2);
        EXPECT_TRUE(imported.error.startsWith(c.message)) << imported.error.toStdString();
    }
    EXPECT_TRUE(m_tool.run({"identity", "list"}).output.isEmpty()) << "nothing was imported";
    const ToolRun missing = m_tool.run({"identity", "import", "gone.p12", "--password-file", "password.txt"});
    EXPECT_EQ(missing.exitCode, 2);
    EXPECT_EQ(missing.error, "gone.p12: cannot open: no such file or directory\n");
}

TEST_F(SigningCommandsTest, SignVerifyAndUnsignMakeTheRoundTrip) {
    ASSERT_EQ(importSigner().exitCode, 0);
    trustRoot();
    const QString plain = goodProfile("relay.mobileconfig");

    const ToolRun signedRun = sign("relay.mobileconfig", "signed.mobileconfig");
    EXPECT_EQ(signedRun.exitCode, 0) << signedRun.error.toStdString();
    const ToolRun verified = m_tool.run({"verify", "signed.mobileconfig"});
    EXPECT_EQ(verified.exitCode, 0) << verified.output.toStdString();
    EXPECT_EQ(verified.output, "signed.mobileconfig: signed by “Quorlin CLI Signer”: signature intact, chain "
                               "trusted, certificate valid\n");
    writeFile("root.pem", TestPki::pem(root.certificate.get()));
    EXPECT_EQ(openSslVerify(m_tool.path("signed.mobileconfig"), m_tool.path("root.pem")), 0);

    const ToolRun checked = run({"check", "signed.mobileconfig"});
    EXPECT_EQ(checked.exitCode, 0) << checked.output.toStdString() << checked.error.toStdString();
    EXPECT_EQ(run({"format", "--check", "signed.mobileconfig"}).exitCode, 0) << "its content is in form";

    const ToolRun unsigned_ = run({"unsign", "signed.mobileconfig", "-o", "unsigned.mobileconfig"});
    EXPECT_EQ(unsigned_.exitCode, 0) << unsigned_.error.toStdString();
    EXPECT_EQ(test::readFile(m_tool.path("unsigned.mobileconfig")), test::readFile(plain));

    const ToolRun notSigned = run({"unsign", "relay.mobileconfig", "-o", "x.mobileconfig"});
    EXPECT_EQ(notSigned.exitCode, 2);
    EXPECT_EQ(notSigned.error, "relay.mobileconfig: not signed\n");
}

TEST_F(SigningCommandsTest, VerifyReportsUntrustedBrokenAndUnsignedFiles) {
    ASSERT_EQ(importSigner().exitCode, 0);
    goodProfile("relay.mobileconfig");
    ASSERT_EQ(sign("relay.mobileconfig", "signed.mobileconfig").exitCode, 0);
    QByteArray tampered = test::readFile(m_tool.path("signed.mobileconfig"));
    ASSERT_TRUE(tampered.contains("relay.example.com"));
    tampered.replace("relay.example.com", "relay.exbmple.com");
    writeFile("tampered.mobileconfig", tampered);

    const ToolRun verified =
        m_tool.run({"verify", "signed.mobileconfig", "tampered.mobileconfig", "relay.mobileconfig"});
    EXPECT_EQ(verified.exitCode, 1);
    EXPECT_EQ(lines(verified.output),
              (QStringList{"signed.mobileconfig: signed by “Quorlin CLI Signer”: signature intact, chain "
                           "untrusted (its root is not among the trusted roots), certificate valid",
                           "tampered.mobileconfig: signed by “Quorlin CLI Signer”: signature broken, chain "
                           "untrusted (its root is not among the trusted roots), certificate valid",
                           "relay.mobileconfig: not signed"}));

    const QJsonArray json =
        QJsonDocument::fromJson(m_tool.run({"verify", "--json", "tampered.mobileconfig"}).output).array();
    ASSERT_EQ(json.size(), 1);
    const QJsonObject signer = json.first()["signers"].toArray().first().toObject();
    EXPECT_EQ(signer["commonName"].toString(), kSigner);
    EXPECT_FALSE(signer["signatureIntact"].toBool());
    EXPECT_FALSE(signer["chainTrusted"].toBool());

    const ToolRun checked = run({"check", "tampered.mobileconfig"});
    EXPECT_EQ(checked.exitCode, 1);
    EXPECT_EQ(checked.output, "tampered.mobileconfig: the signature of “Quorlin CLI Signer” is broken\n");
}

TEST_F(SigningCommandsTest, VerifyJudgesTheChainApartFromTheDatesAndTakesACaFile) {
    const struct {
        const char* name;
        CertificateValidity validity;
        const char* warning;
        const char* dates;
    } signers[] = {
        {"Expired Signer", {-30, -1}, "expired on", "expired"},
        {"Future Signer", {1, 30}, "is not valid before", "not yet valid"},
    };
    goodProfile("relay.mobileconfig");
    writeFile("root.pem", TestPki::pem(root.certificate.get()));
    writeFile("junk.pem", "no certificate here");
    for (const auto& each : signers) {
        SCOPED_TRACE(each.name);
        const TestCertificate signer =
            TestPki::issue(QString::fromUtf8(each.name), &intermediate, false, each.validity);
        ASSERT_EQ(importIdentity(m_tool, signer, chain()).exitCode, 0);
        const ToolRun signedRun = run({"sign", "relay.mobileconfig", "--identity", each.name, "-o",
                                       "dated.mobileconfig", "--passphrase-file", "passphrase.txt"});
        EXPECT_EQ(signedRun.exitCode, 0) << signedRun.error.toStdString();
        EXPECT_TRUE(signedRun.error.contains(each.warning)) << signedRun.error.toStdString();

        const QString line = QStringLiteral(
            "dated.mobileconfig: signed by “%1”: signature intact, chain %2, certificate %3\n");
        const ToolRun untrusted = m_tool.run({"verify", "dated.mobileconfig"});
        EXPECT_EQ(untrusted.exitCode, 1);
        EXPECT_EQ(QString::fromUtf8(untrusted.output),
                  line.arg(each.name, "untrusted (its root is not among the trusted roots)", each.dates));
        const ToolRun trusted = m_tool.run({"verify", "dated.mobileconfig", "--ca-file", "root.pem"});
        EXPECT_EQ(trusted.exitCode, 1) << "a certificate out of its dates is still a finding";
        EXPECT_EQ(QString::fromUtf8(trusted.output), line.arg(each.name, "trusted", each.dates));
    }
    const ToolRun junk = m_tool.run({"verify", "relay.mobileconfig", "--ca-file", "junk.pem"});
    EXPECT_EQ(junk.exitCode, 2);
    EXPECT_EQ(junk.error, "junk.pem: cannot use as --ca-file: holds no certificate in PEM or DER form\n");
}

TEST_F(SigningCommandsTest, IdentitiesOfOneNameAreListedAndChosenByFingerprint) {
    ASSERT_EQ(importSigner().exitCode, 0);
    ASSERT_EQ(importIdentity(m_tool, TestPki::issue(kSigner, &intermediate, false), chain()).exitCode, 0);
    goodProfile("relay.mobileconfig");
    const QJsonArray identities =
        QJsonDocument::fromJson(m_tool.run({"identity", "list", "--json"}).output).array();
    ASSERT_EQ(identities.size(), 2);

    const ToolRun ambiguous = sign("relay.mobileconfig", "out");
    EXPECT_EQ(ambiguous.exitCode, 2);
    for (const auto& identity : identities) {
        const QString fingerprint = identity.toObject()["fingerprint"].toString();
        EXPECT_EQ(fingerprint.size(), 32 * 3 - 1);
        EXPECT_TRUE(ambiguous.error.contains(fingerprint.toUtf8())) << ambiguous.error.toStdString();
    }
    EXPECT_TRUE(ambiguous.error.startsWith(
        "relay.mobileconfig: 2 signing identities are named “Quorlin CLI Signer”"));
    EXPECT_FALSE(QFileInfo::exists(m_tool.path("out")));

    const QString chosen = identities[1].toObject()["fingerprint"].toString().toLower().remove(':');
    const ToolRun byFingerprint = run({"sign", "relay.mobileconfig", "--identity", chosen, "-o", "out",
                                       "--passphrase-file", "passphrase.txt"});
    EXPECT_EQ(byFingerprint.exitCode, 0) << byFingerprint.error.toStdString();
    EXPECT_TRUE(byFingerprint.error.isEmpty());
}

TEST_F(SigningCommandsTest, SignRefusesUnknownIdentitiesWrongPassphrasesAndNonProfiles) {
    ASSERT_EQ(importSigner().exitCode, 0);
    goodProfile("relay.mobileconfig");
    writeFile("wrong.txt", "not the passphrase\n");
    writeFile("junk.mobileconfig", "junk");

    const struct {
        QStringList arguments;
        const char* error;
    } cases[] = {
        {{"relay.mobileconfig", "--identity", "Nobody"},
         "relay.mobileconfig: no signing identity named “Nobody”"},
        {{"relay.mobileconfig", "--identity", kSigner, "--passphrase-file", "wrong.txt"},
         "relay.mobileconfig: cannot sign with “Quorlin CLI Signer”: wrong passphrase or unreadable key\n"},
        {{"relay.mobileconfig", "--identity", kSigner},
         "relay.mobileconfig: cannot sign with “Quorlin CLI Signer”: no terminal to ask at"},
        {{"junk.mobileconfig", "--identity", kSigner, "--passphrase-file", "passphrase.txt"},
         "junk.mobileconfig: The document could not be opened because it is not a readable configuration "
         "profile. The property list holds no dictionary at its top.\n"},
        {{"relay.mobileconfig"}, "quorlin-profile sign: no identity given (--identity NAME)\n"},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.arguments.join(u' ').toStdString());
        const ToolRun refused = run(QStringList{"sign"} + each.arguments + QStringList{"-o", "out"});
        EXPECT_EQ(refused.exitCode, 2);
        EXPECT_TRUE(refused.error.startsWith(each.error)) << refused.error.toStdString();
    }
    EXPECT_FALSE(QFileInfo::exists(m_tool.path("out")));
}

TEST_F(SigningCommandsTest, FormatLeavesASignedProfileAloneUnlessGivenAnIdentity) {
    ASSERT_EQ(importSigner().exitCode, 0);
    trustRoot();
    const QByteArray canonical = test::readFile(goodProfile("relay.mobileconfig"));
    ASSERT_EQ(m_tool.run({"plist", "convert", "-f", "binary1", "relay.mobileconfig"}).exitCode, 0);
    ASSERT_EQ(sign("relay.mobileconfig", "signed.mobileconfig").exitCode, 0);
    const QByteArray signedBytes = test::readFile(m_tool.path("signed.mobileconfig"));

    const ToolRun checked = run({"format", "--check", "signed.mobileconfig"});
    EXPECT_EQ(checked.exitCode, 0) << "the content's values are in form, binary as it is";
    EXPECT_TRUE(checked.output.isEmpty());
    const ToolRun leftAlone = run({"format", "signed.mobileconfig"});
    EXPECT_EQ(leftAlone.exitCode, 1);
    EXPECT_EQ(leftAlone.output,
              "signed.mobileconfig: signed, left as it is (give --identity NAME to sign it again)\n");
    EXPECT_EQ(test::readFile(m_tool.path("signed.mobileconfig")), signedBytes);

    const ToolRun resigned =
        run({"format", "signed.mobileconfig", "--identity", kSigner, "--passphrase-file", "passphrase.txt"});
    EXPECT_EQ(resigned.exitCode, 0) << resigned.error.toStdString();
    EXPECT_EQ(resigned.output, "signed.mobileconfig: reformatted\n");
    EXPECT_EQ(m_tool.run({"verify", "signed.mobileconfig"}).exitCode, 0);
    ASSERT_EQ(run({"unsign", "signed.mobileconfig", "-o", "content.mobileconfig"}).exitCode, 0);
    EXPECT_EQ(test::readFile(m_tool.path("content.mobileconfig")), canonical);
}
