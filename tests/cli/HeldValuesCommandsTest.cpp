// The command-line tool on profiles that hold what the bundled manifests
// don't allow: check reports each, format keeps them, --repair removes them.

#include "ToolProcess.h"

#include "plist/PlistReader.h"
#include "plist/XmlWriter.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

using namespace quorlin;
using quorlin::test::ToolRun;

namespace {

const QString kept = QStringLiteral("kept as it is");

class HeldValuesCommandsTest : public ::testing::TestWithParam<const char*> {
protected:
    QString copyCorpus(const QString& name) const {
        const QString target = m_tool.path(name);
        QFile::remove(target);
        EXPECT_TRUE(QFile::copy(test::testDataPath("held-values/" + name), target));
        QFile::setPermissions(target, QFile::ReadOwner | QFile::WriteOwner);
        return target;
    }
    static plist::Value tree(const QString& path) {
        const auto read = plist::PlistReader::read(test::readFile(path));
        return read ? read->root : plist::Value();
    }
    qsizetype heldFindings(const QString& name) const {
        const ToolRun checked = m_tool.run({"check", "--json", name});
        const QJsonArray findings = test::json(checked.output).object().value("findings").toArray();
        return std::count_if(findings.begin(), findings.end(), [](const QJsonValue& finding) {
            return finding.toObject().value("message").toString().contains(kept);
        });
    }
    test::ToolProcess m_tool;
};

TEST_P(HeldValuesCommandsTest, FormatKeepsCheckReportsAndRepairRemoves) {
    const QString name = QString::fromUtf8(GetParam());
    const QString path = copyCorpus(name);
    const plist::Value original = tree(path);

    const ToolRun inForm = m_tool.run({"format", "--check", name});
    EXPECT_EQ(inForm.exitCode, 0) << inForm.output.toStdString() << inForm.error.toStdString();
    const ToolRun formatted = m_tool.run({"format", name});
    EXPECT_EQ(formatted.exitCode, 0) << formatted.error.toStdString();
    EXPECT_EQ(tree(path), original) << "payload order aside, the corpus is in the writer's order";

    const qsizetype reported = heldFindings(name);
    EXPECT_GT(reported, 0);
    const ToolRun repaired = m_tool.run({"format", "--repair", name});
    EXPECT_EQ(repaired.exitCode, 0) << repaired.error.toStdString();
    const QStringList removed = test::lines(repaired.error);
    EXPECT_GE(removed.size(), reported) << "a field's one finding may stand for several values";
    for (const QString& line : removed)
        EXPECT_TRUE(line.startsWith(name + ": removed ")) << line.toStdString();
    EXPECT_NE(tree(path), original);
    EXPECT_EQ(heldFindings(name), 0);
}

INSTANTIATE_TEST_SUITE_P(Corpus, HeldValuesCommandsTest,
                         ::testing::Values("excluded.mobileconfig", "wrong-class.mobileconfig",
                                           "undescribed-nested.mobileconfig"));

// A platform given without bounds takes those the editor's validation settings hold.
TEST(HeldValuesCommands, APlatformWithoutBoundsTakesTheEditorsTargets) {
    test::ToolProcess tool;
    ASSERT_TRUE(
        QFile::copy(test::testDataPath("held-values/excluded.mobileconfig"), tool.path("p.mobileconfig")));
    const auto introducedAfterMinimum = [&] {
        const ToolRun checked = tool.run({"check", "--json", "--platform", "macOS", "p.mobileconfig"});
        const QJsonArray findings = test::json(checked.output).object().value("findings").toArray();
        return std::count_if(findings.begin(), findings.end(), [](const QJsonValue& finding) {
            return finding.toObject().value("message").toString().contains("after your minimum target");
        });
    };
    EXPECT_EQ(introducedAfterMinimum(), 0) << "no minimum anywhere: no claim to be after";
    const QString settings = tool.configFolder() + "/quorlin-profile-editor/com.quorlin.ProfileEditor.plist";
    ASSERT_TRUE(QDir().mkpath(QFileInfo(settings).absolutePath()));
    QFile file(settings);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(*plist::XmlWriter::write(plist::Dictionary{
        {"lastChoiceValidationSettings", plist::Dictionary{{"targetingMacOS", true}, {"macOSMin", "1.0"}}}}));
    file.close();
    EXPECT_GT(introducedAfterMinimum(), 0);
}

} // namespace
