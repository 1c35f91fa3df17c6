#include "ProfileToolTest.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>

using namespace quorlin;
using quorlin::test::TestPki;
using quorlin::test::ToolProcess;
using quorlin::test::ToolRun;

namespace {

const QString kSigner = QStringLiteral("Quorlin Diff Signer");

// Each folder of tests/data/diff/cases holds an old and a new profile (a
// folder without a new one compares with a signed copy of the old) and the
// report expected of them, as text and as JSON.
class DiffCommandTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(m_tool.isValid()); }

    ToolRun run(QStringList arguments) const {
        arguments << QStringLiteral("--manifests") << test::testDataPath(QStringLiteral("diff/manifests"));
        return m_tool.run(arguments);
    }
    QString newProfile(const QDir& folder) const {
        if (folder.exists(QStringLiteral("new.mobileconfig")))
            return folder.filePath(QStringLiteral("new.mobileconfig"));
        const QString signedCopy = m_tool.path(folder.dirName() + QStringLiteral("-signed.mobileconfig"));
        signWithTestIdentity(folder.filePath(QStringLiteral("old.mobileconfig")), signedCopy);
        return signedCopy;
    }
    void signWithTestIdentity(const QString& input, const QString& output) const {
        const auto root = TestPki::issue(QStringLiteral("Quorlin Diff Root"), nullptr, true);
        EXPECT_EQ(
            test::importIdentity(m_tool, TestPki::issue(kSigner, &root, false), {root.certificate.get()})
                .exitCode,
            0);
        EXPECT_EQ(
            run({"sign", input, "--identity", kSigner, "-o", output, "--passphrase-file", "passphrase.txt"})
                .exitCode,
            0);
    }
    void writeFile(const QString& name, const QByteArray& bytes) const {
        QFile file(m_tool.path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(bytes);
    }

    ToolProcess m_tool;
};

} // namespace

TEST_F(DiffCommandTest, EveryCaseGivesItsExpectedTextAndJson) {
    const QDir cases(test::testDataPath(QStringLiteral("diff/cases")));
    const QStringList names = cases.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    ASSERT_EQ(names.size(), 5);
    for (const QString& name : names) {
        SCOPED_TRACE(name.toStdString());
        const QDir folder(cases.filePath(name));
        const QString oldFile = folder.filePath(QStringLiteral("old.mobileconfig"));
        const QString newFile = newProfile(folder);
        const QByteArray expectedText = test::readFile(folder.filePath(QStringLiteral("expected.txt")));
        const int expectedExit = expectedText.startsWith("No differences") ? 0 : 1;

        const ToolRun text = run({"diff", oldFile, newFile});
        EXPECT_EQ(text.exitCode, expectedExit) << text.error.toStdString();
        EXPECT_EQ(QString::fromUtf8(text.output), QString::fromUtf8(expectedText));

        const ToolRun json = run({"diff", "--json", oldFile, newFile});
        EXPECT_EQ(json.exitCode, expectedExit);
        EXPECT_EQ(QJsonDocument::fromJson(json.output),
                  QJsonDocument::fromJson(test::readFile(folder.filePath(QStringLiteral("expected.json")))))
            << json.output.toStdString();
    }
}

// The text form is what git diffs: alike for profiles alike in effect, and
// the signature heads it.
TEST_F(DiffCommandTest, ShowGivesTheSameTextForProfilesTheSameInEffect) {
    const QDir cases(test::testDataPath(QStringLiteral("diff/cases")));
    const ToolRun old = run({"show", cases.filePath("uuid-churn/old.mobileconfig")});
    EXPECT_EQ(old.exitCode, 0) << old.error.toStdString();
    EXPECT_EQ(QString::fromUtf8(old.output),
              QString::fromUtf8(test::readFile(test::testDataPath(QStringLiteral("diff/show.txt")))));
    EXPECT_EQ(run({"show", cases.filePath("uuid-churn/new.mobileconfig")}).output, old.output);

    const ToolRun signedCopy = run({"show", newProfile(QDir(cases.filePath("signed")))});
    EXPECT_EQ(signedCopy.output,
              QStringLiteral("Signature: signed by “%1”\n\n").arg(kSigner).toUtf8() + old.output);
}

TEST_F(DiffCommandTest, IdentifiersCanBeLeftOut) {
    const QString old = test::testDataPath(QStringLiteral("diff/cases/deep-key/old.mobileconfig"));
    writeFile(QStringLiteral("renamed.mobileconfig"),
              test::readFile(old).replace("com.example.devices", "com.example.renamed"));
    const QString renamed = m_tool.path(QStringLiteral("renamed.mobileconfig"));
    const ToolRun reported = run({"diff", old, renamed});
    EXPECT_EQ(reported.exitCode, 1);
    EXPECT_TRUE(
        reported.output.contains("~ Payload Identifier (PayloadIdentifier): \"com.example.devices\" → "
                                 "\"com.example.renamed\""))
        << reported.output.toStdString();
    EXPECT_EQ(run({"diff", "--ignore-identifiers", old, renamed}).exitCode, 0);
}
