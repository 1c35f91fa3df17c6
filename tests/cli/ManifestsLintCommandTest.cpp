#include "ToolProcess.h"

#include "support/TestSupport.h"

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using test::testDataPath;
using test::ToolProcess;

const QString faults = testDataPath(QStringLiteral("supply/lint/faults.plist"));
const QString clean = testDataPath(QStringLiteral("supply/lint/clean.plist"));

TEST(ManifestsLintCommand, ExitStatusTellsCleanFromFindingsFromUnreadable) {
    const ToolProcess tool;
    const struct {
        QStringList arguments;
        int exitCode;
    } cases[] = {
        {{clean}, 0},
        {{clean, faults}, 1},
        {{faults, QStringLiteral("no-such-file.plist")}, 2},
        {{}, 2},
    };
    for (const auto& [arguments, exitCode] : cases) {
        const auto run = tool.run(QStringList{"manifests", "lint"} + arguments);
        EXPECT_EQ(run.exitCode, exitCode) << arguments.join(u' ').toStdString() << '\n'
                                          << run.error.toStdString();
    }
}

TEST(ManifestsLintCommand, NamesFileKeyPathAndReasonInTextAndJson) {
    const ToolProcess tool;
    const auto text = tool.run({"manifests", "lint", faults});
    EXPECT_TRUE(test::lines(text.output)
                    .contains(faults + ": Settings.Phone: names the platform ios, which its parent doesn't"))
        << text.output.toStdString();
    EXPECT_TRUE(
        test::lines(text.output)
            .contains(faults + ": (manifest): unknown key \"pfm_titel\"; did you mean \"pfm_title\"?"));

    const auto json = tool.run({"manifests", "lint", "--json", faults, "missing.plist"});
    EXPECT_EQ(json.exitCode, 2);
    const QJsonObject root = test::json(json.output).object();
    const QJsonArray findings = root.value("findings").toArray();
    EXPECT_EQ(findings.size(), test::lines(text.output).size());
    EXPECT_EQ(findings.first().toObject().value("file").toString(), faults);
    EXPECT_EQ(root.value("unreadable").toArray().size(), 1);
}

} // namespace
} // namespace quorlin
