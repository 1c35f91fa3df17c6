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

// A first start saves only the version, in the settings folder it was given.
TEST_F(EditorStartTest, TheHeadlessStartCompletesAndSavesOnlyTheVersion) {
    const ToolRun start = m_editor.run({"--list-domains"});
    EXPECT_EQ(start.exitCode, 0) << start.error.toStdString();
    // Without a window, the editor lists the domains it loaded: here the bundled ones.
    const QList<QByteArray> lines = start.output.trimmed().split('\n');
    EXPECT_EQ(lines.first(), QByteArray("\"\"\tGeneral"));
    EXPECT_EQ(lines.size(), QDir(QStringLiteral(QUORLIN_BINARY_DIR "/share/quorlin-profile-editor/Manifests"))
                                .entryList({"*.plist"}, QDir::Files)
                                .size());
    const auto read = plist::PlistReader::read(test::readFile(settingsFile()));
    ASSERT_TRUE(read) << read.error().toString().toStdString();
    EXPECT_EQ(read->format, plist::Format::Xml);
    EXPECT_EQ(read->root,
              plist::Value(plist::Dictionary{{"lastLaunchedBundleShortVersionString", QUORLIN_VERSION}}));
}

// Measuring start-up needs the editor to end by itself once its first window
// is painted; without the variable a start with no files would wait for the user.
TEST_F(EditorStartTest, EndsAfterItsFirstWindowWhenAskedTo) {
    qputenv("QUORLIN_EXIT_AFTER_FIRST_WINDOW", "1");
    const ToolRun start = m_editor.run({});
    qunsetenv("QUORLIN_EXIT_AFTER_FIRST_WINDOW");
    EXPECT_EQ(start.exitCode, 0) << start.error.toStdString();
}
