#include "ToolProcess.h"

#include "support/TestSupport.h"

#include <gtest/gtest.h>

using quorlin::test::ToolProcess;
using quorlin::test::ToolRun;

namespace {

class CommandLineToolTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(m_tool.isValid()); }

    ToolProcess m_tool;
};

} // namespace

TEST_F(CommandLineToolTest, HelpListsEveryCommand) {
    const ToolRun help = m_tool.run({"--help"});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_TRUE(help.output.startsWith("Usage: quorlin-profile COMMAND")) << help.output.toStdString();
    // Summaries line up after the longest name, "manifests standardize".
    EXPECT_TRUE(help.output.contains("\n  plist convert          Convert a property list"));
    EXPECT_TRUE(help.output.contains("\n  manifests standardize  Bring a folder"));
    for (const char* command :
         {"check", "domains show", "export-payload", "format", "identity import", "identity list",
          "manifests status", "manifests update", "new", "plist lint", "sign", "unsign", "verify"})
        EXPECT_TRUE(help.output.contains(QByteArray("\n  ") + command + ' ')) << command;
    EXPECT_TRUE(help.error.isEmpty());
    EXPECT_EQ(m_tool.run({"-h"}).output, help.output);
}

TEST_F(CommandLineToolTest, VersionNamesTheProgramAndItsVersion) {
    const ToolRun version = m_tool.run({"--version"});
    EXPECT_EQ(version.exitCode, 0);
    EXPECT_EQ(version.output, QByteArray("quorlin-profile (Quorlin Profile Editor) " QUORLIN_VERSION "\n"));
}

TEST_F(CommandLineToolTest, EachCommandHasItsOwnHelp) {
    const ToolRun lint = m_tool.run({"plist", "lint", "--help"});
    EXPECT_EQ(lint.exitCode, 0);
    EXPECT_TRUE(lint.output.startsWith("Usage: quorlin-profile plist lint FILE...\n"));
    const ToolRun convert = m_tool.run({"plist", "convert", "some.plist", "-h"});
    EXPECT_EQ(convert.exitCode, 0);
    EXPECT_TRUE(
        convert.output.startsWith("Usage: quorlin-profile plist convert -f xml1|binary1 FILE [-o OUT]\n"));
}

TEST_F(CommandLineToolTest, WhatIsNoCommandIsAUsageError) {
    struct Case {
        QStringList arguments;
        const char* message;
    };
    for (const Case& c :
         {Case{{}, "Usage: quorlin-profile COMMAND"},
          Case{{"frobnicate"}, "quorlin-profile: unknown command 'frobnicate'\n"},
          Case{{"--frobnicate"}, "quorlin-profile: unknown option '--frobnicate'\n"},
          Case{{"plist"}, "quorlin-profile: 'plist' needs a command: plist convert, plist lint\n"},
          Case{{"plist", "check"}, "quorlin-profile: unknown command 'plist check'"}}) {
        SCOPED_TRACE(c.arguments.join(u' ').toStdString());
        const ToolRun run = m_tool.run(c.arguments);
        EXPECT_EQ(run.exitCode, 2);
        EXPECT_TRUE(run.error.contains(c.message)) << run.error.toStdString();
        EXPECT_TRUE(run.output.isEmpty());
    }
}
