// The tool in a pipeline: a write that fails is never reported as success and
// leaves the old file byte for byte; inputs that would never end are refused.

#include "ProfileToolTest.h"

#include "documents/TestPki.h"
#include "support/ScratchMount.h"

#include <QDir>

#include <fcntl.h>
#include <sys/stat.h>

using namespace quorlin;
using quorlin::test::lines;
using quorlin::test::ProfileToolTest;
using quorlin::test::ScratchMount;
using quorlin::test::TestCertificate;
using quorlin::test::TestPki;
using quorlin::test::ToolRun;

namespace {

const QString kRelay = QStringLiteral("com.quorlin.test.relay");
const QString kSigner = QStringLiteral("Quorlin Pipeline Signer");

class PipelineSafetyTest : public ProfileToolTest {
protected:
    void SetUp() override {
        ProfileToolTest::SetUp();
        const QString profile = newProfile("relay.mobileconfig", {kRelay});
        uuid = *payloads(readDictionary(profile)).first().dictionary()->string("PayloadUUID");
        writeFile("secret.txt", "secret\n");
        writeFile("signer.p12", TestPki::pkcs12(leaf, {root.certificate.get()}, "secret"));
        ASSERT_EQ(m_tool
                      .run({"identity", "import", "-", "--password-file", "secret.txt", "--passphrase-file",
                            "secret.txt"},
                           m_tool.path("signer.p12"))
                      .exitCode,
                  0);
        ASSERT_EQ(tool(command("sign", m_tool.path("signed.mobileconfig"))).exitCode, 0);
        // Not in the editor's form, so that `format` has to write it.
        ASSERT_EQ(
            m_tool.run({"plist", "convert", "-f", "binary1", "relay.mobileconfig", "-o", "binary"}).exitCode,
            0);
        old = test::readFile(m_tool.path("binary"));
    }

    // The arguments of a command that writes `out`.
    QStringList command(const QString& name, const QString& out) const {
        const QString manifests = ProfileToolTest::manifests();
        if (name == "new")
            return {"new", kRelay, "-o", out, "--manifests", manifests};
        if (name == "plist convert")
            return {"plist", "convert", "-f", "xml1", "relay.mobileconfig", "-o", out};
        if (name == "sign")
            return {"sign", "relay.mobileconfig", "--identity", kSigner,       "-o",
                    out,    "--passphrase-file",  "secret.txt", "--manifests", manifests};
        if (name == "unsign")
            return {"unsign", "signed.mobileconfig", "-o", out, "--manifests", manifests};
        if (name == "export-payload")
            return {
                "export-payload", "relay.mobileconfig", "--uuid", uuid.toLower(), "-o", out, "--manifests",
                manifests};
        return {"format", out, "--manifests", manifests};
    }
    ToolRun tool(const QStringList& arguments, const QString& output = {}) const {
        return m_tool.run(arguments, {}, output);
    }

    inline static const QStringList kWriters{"new",    "plist convert",  "sign",
                                             "unsign", "export-payload", "format"};
    TestCertificate root = TestPki::issue(QStringLiteral("Quorlin Pipeline Root"), nullptr, true);
    TestCertificate leaf = TestPki::issue(kSigner, &root, false);
    QString uuid;
    QByteArray old;
};

} // namespace

TEST_F(PipelineSafetyTest, EveryWriterSucceedsToFilesAndToStandardOutput) {
    for (const QString& name : kWriters) {
        SCOPED_TRACE(name.toStdString());
        writeFile("out", old);
        const ToolRun toFile = tool(command(name, m_tool.path("out")));
        EXPECT_EQ(toFile.exitCode, 0) << toFile.error.toStdString();
        EXPECT_NE(test::readFile(m_tool.path("out")), old);
        if (name == "format")
            continue;
        const ToolRun toOutput = tool(command(name, "-"));
        EXPECT_EQ(toOutput.exitCode, 0) << toOutput.error.toStdString();
        EXPECT_FALSE(toOutput.output.isEmpty());
    }
}

TEST_F(PipelineSafetyTest, FailedWritesExitTwoWithTheReasonAndKeepTheOldFile) {
    for (const QString& name : kWriters) {
        SCOPED_TRACE(name.toStdString());
        if (name == "format")
            continue;
        const ToolRun device = tool(command(name, "/dev/full"));
        EXPECT_EQ(device.exitCode, 2);
        EXPECT_EQ(device.error, "/dev/full: cannot write: no space left on the device\n");
        const ToolRun output = tool(command(name, "-"), "/dev/full");
        EXPECT_EQ(output.exitCode, 2);
        EXPECT_EQ(output.error,
                  "quorlin-profile: cannot write to standard output: no space left on the device\n");
    }
    const ScratchMount full;
    const ScratchMount readOnly;
    if (!full.isMounted())
        GTEST_SKIP() << ScratchMount::kSkipReason;
    full.fillAfter("out", old);
    ASSERT_TRUE(readOnly.readOnlyAfter("out", old));
    for (const QString& name : kWriters) {
        for (const auto& [mount, reason] : {std::pair{&full, "no space left on the device"},
                                            std::pair{&readOnly, "the file system is read-only"}}) {
            SCOPED_TRACE((name + u' ' + QString::fromUtf8(reason)).toStdString());
            const ToolRun failed = tool(command(name, mount->path("out")));
            EXPECT_EQ(failed.exitCode, 2);
            EXPECT_TRUE(failed.error.contains(": cannot write: " + QByteArray(reason)))
                << failed.error.toStdString();
            EXPECT_FALSE(failed.output.contains("reformatted")) << failed.output.toStdString();
            EXPECT_EQ(test::readFile(mount->path("out")), old);
        }
    }
}

TEST_F(PipelineSafetyTest, InputsThatWouldNeverEndAreRefusedAndDashIsStandardInput) {
    ASSERT_EQ(::mkfifo(QFile::encodeName(m_tool.path("fifo")).constData(), 0600), 0);
    QFile large(m_tool.path("large.plist"));
    ASSERT_TRUE(large.open(QIODevice::WriteOnly) && large.resize(513LL * 1024 * 1024));
    large.close();
    const struct {
        QStringList arguments;
        QString input;
        const char* error;
    } cases[] = {
        {{"plist", "lint", "/dev/zero"}, {}, "/dev/zero: cannot open: is a device, not a file\n"},
        {{"plist", "lint", "fifo"},
         {},
         "fifo: cannot open: is a pipe, not a file (give - to read standard input)\n"},
        {{"plist", "lint", "large.plist"}, {}, "large.plist: cannot open: is larger than 512 MB\n"},
        {{"plist", "lint", "-"}, "/dev/zero", "standard input: cannot open: is a device, not a file\n"},
        {{"verify", "-"}, "/dev/zero", "standard input: cannot open: is a device, not a file\n"},
        {{"format", "-"}, {}, "quorlin-profile format: '-' can't be rewritten in place; give files\n"},
    };
    for (const auto& each : cases) {
        const ToolRun refused = m_tool.run(each.arguments, each.input);
        EXPECT_EQ(refused.exitCode, 2) << each.error;
        EXPECT_TRUE(refused.error.startsWith(each.error)) << refused.error.toStdString();
    }
    const ToolRun fromInput =
        m_tool.run(command("export-payload", "-").replaceInStrings("relay.mobileconfig", "-"),
                   m_tool.path("relay.mobileconfig"));
    EXPECT_EQ(fromInput.exitCode, 0) << fromInput.error.toStdString();
    EXPECT_TRUE(fromInput.output.contains(kRelay.toUtf8()));
}

TEST_F(PipelineSafetyTest, FoldersReportNamesTheyCannotDecodeAndFilesThatAreNotUtf8) {
    ASSERT_TRUE(QDir(m_tool.path("")).mkpath("profiles"));
    const QByteArray undecodable = QFile::encodeName(m_tool.path("profiles/")) + "bad\xFF.mobileconfig";
    QFile bad;
    ASSERT_TRUE(bad.open(::open(undecodable.constData(), O_CREAT | O_WRONLY, 0600), QIODevice::WriteOnly,
                         QFileDevice::AutoCloseHandle));
    bad.close();
    QByteArray latin = test::readFile(m_tool.path("relay.mobileconfig"));
    latin.insert(latin.indexOf("<string>") + 8, '\xE9');
    writeFile("profiles/latin.mobileconfig", latin);
    const ToolRun checked = tool({"check", "profiles", "--manifests", manifests()});
    // The test's folder can't remove what it can't name.
    ::unlink(undecodable.constData());
    EXPECT_EQ(checked.exitCode, 2);
    const QStringList errors = lines(checked.error);
    ASSERT_EQ(errors.size(), 2) << checked.error.toStdString();
    EXPECT_EQ(errors[0],
              QString::fromUtf8("profiles/bad\uFFFD.mobileconfig: the name is not valid UTF-8; rename it "
                                "to use it"));
    EXPECT_TRUE(
        errors[1].startsWith("profiles/latin.mobileconfig: The document could not be opened because it is "
                             "not a readable configuration profile. Not a property list: Invalid UTF-8 text "
                             "at byte "))
        << errors[1].toStdString();
}
