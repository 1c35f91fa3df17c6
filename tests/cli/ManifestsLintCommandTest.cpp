#include "ToolProcess.h"

#include "support/TestSupport.h"

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using test::testDataPath;
using test::ToolProcess;

const QString faults = testDataPath(QStringLiteral("supply/lint/faults.plist"));

// The text form is in tests/data/cli/command-lines.txt; JSON holds the same findings.
TEST(ManifestsLintCommand, JsonHoldsTheFindingsOfTheTextAndTheUnreadableFiles) {
    const ToolProcess tool;
    const auto text = tool.run({"manifests", "lint", faults});
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
