#include "ToolProcess.h"

#include "plist/PlistReader.h"
#include "support/TestSupport.h"

#include <QDir>

#include <gtest/gtest.h>

using namespace quorlin;
using quorlin::test::ToolProcess;
using quorlin::test::ToolRun;

namespace {

class EditorStartTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(m_editor.isValid()); }

    QString settingsFile() const {
        return m_editor.configFolder() +
               QStringLiteral("/quorlin-profile-editor/com.quorlin.ProfileEditor.plist");
    }

    ToolProcess m_editor{QStringLiteral("quorlin-profile-editor")};
};

} // namespace

TEST_F(EditorStartTest, AnswersVersionAndHelpWithoutStarting) {
    const ToolRun version = m_editor.run({"--version"});
    EXPECT_EQ(version.exitCode, 0);
    EXPECT_EQ(version.output, QByteArray("Quorlin Profile Editor " QUORLIN_VERSION "\n"));
    const ToolRun help = m_editor.run({"--help"});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_TRUE(help.output.startsWith("Usage: quorlin-profile-editor"));
    EXPECT_FALSE(QFile::exists(settingsFile()));

    const ToolRun wrong = m_editor.run({"--frobnicate"});
    EXPECT_EQ(wrong.exitCode, 2);
    EXPECT_TRUE(wrong.error.startsWith("quorlin-profile-editor: unknown argument '--frobnicate'\n"));
}

TEST_F(EditorStartTest, TheHeadlessStartCompletes) {
    const ToolRun start = m_editor.run({"--list-domains"});
    EXPECT_EQ(start.exitCode, 0) << start.error.toStdString();
    // Without a window, the editor lists the domains it loaded: here the bundled ones.
    const QList<QByteArray> lines = start.output.trimmed().split('\n');
    EXPECT_EQ(lines.first(), QByteArray("\"\"\tGeneral"));
    EXPECT_EQ(lines.size(), QDir(QStringLiteral(QUORLIN_BINARY_DIR "/share/quorlin-profile-editor/Manifests"))
                                .entryList({"*.plist"}, QDir::Files)
                                .size());
}

TEST_F(EditorStartTest, AFirstStartSavesOnlyTheVersionInTheSettingsFolderItWasGiven) {
    ASSERT_EQ(m_editor.run({"--list-domains"}).exitCode, 0);
    const auto read = plist::PlistReader::read(test::readFile(settingsFile()));
    ASSERT_TRUE(read) << read.error().toString().toStdString();
    EXPECT_EQ(read->format, plist::Format::Xml);
    EXPECT_EQ(read->root,
              plist::Value(plist::Dictionary{{"lastLaunchedBundleShortVersionString", QUORLIN_VERSION}}));
}
