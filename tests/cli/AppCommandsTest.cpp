#include "ToolProcess.h"

#include "../apptools/ProgramFiles.h"
#include "plist/XmlWriter.h"
#include "support/LocalHttpServer.h"

#include <gtest/gtest.h>

using namespace quorlin;
using quorlin::test::ProgramFiles;
using quorlin::test::ToolProcess;
using quorlin::test::ToolRun;

namespace {

class AppCommandsTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_FALSE(ProgramFiles::arm64().isEmpty()) << "clang and ld64.lld are needed";
        const plist::Dictionary info{{"CFBundleExecutable", "Sample"},
                                     {"CFBundleIdentifier", "com.quorlin.sample"},
                                     {"CFBundleShortVersionString", "1.2"},
                                     {"LSMinimumSystemVersion", "11.0"}};
        ASSERT_TRUE(ProgramFiles::write(m_tool.path("Sample.app/Contents/Info.plist"),
                                        *plist::XmlWriter::write(info)));
        ASSERT_TRUE(
            ProgramFiles::write(m_tool.path("Sample.app/Contents/MacOS/Sample"),
                                ProgramFiles::universal({{ProgramFiles::cpuX86_64, ProgramFiles::x86_64()},
                                                         {ProgramFiles::cpuArm64, ProgramFiles::arm64()}})));
        ASSERT_TRUE(ProgramFiles::write(m_tool.path("notes.txt"), "not a program"));
    }

    ToolProcess m_tool;
};

} // namespace

TEST_F(AppCommandsTest, PrintsTheInspectorsFactsOfAnApplication) {
    const ToolRun run = m_tool.run({"app", "inspect", "Sample.app"});
    EXPECT_EQ(run.exitCode, 0) << run.error.constData();
    const QStringList lines = test::lines(run.output);
    ASSERT_GE(lines.size(), 8) << run.output.constData();
    EXPECT_EQ(lines.mid(0, 7), (QStringList{"Sample.app", "  Name: Sample", "  Version: 1.2",
                                            "  Bundle ID: com.quorlin.sample",
                                            "  Architectures: Apple Silicon 64-bit and Intel 64-bit",
                                            "  Platform: macOS", "  Minimum OS Verion: 11.0"}));
    EXPECT_TRUE(lines.last().startsWith(QLatin1String("  Code Requirement: cdhash H\"")))
        << lines.last().toStdString();
}

TEST_F(AppCommandsTest, JsonListsEveryPathAndRefusalsGoToStandardError) {
    const ToolRun run = m_tool.run({"app", "inspect", "--json", "Sample.app", "notes.txt"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(QString::fromUtf8(run.error).trimmed(),
              QStringLiteral("notes.txt: The app bundle notes.txt could not be inspected."));
    const QJsonArray results = test::json(run.output).array();
    ASSERT_EQ(results.size(), 1);
    const QJsonObject sample = results.first().toObject();
    EXPECT_EQ(sample.value("bundleID").toString(), QStringLiteral("com.quorlin.sample"));
    EXPECT_EQ(sample.value("architectures").toArray(), (QJsonArray{"x86_64", "arm64"}));
    EXPECT_TRUE(sample.value("codeRequirement").toString().startsWith(QLatin1String("cdhash H\"")));
}

TEST_F(AppCommandsTest, LookupListsSystemAndStoreAppsAndSaysWhenTheStoreIsAway) {
    test::LocalHttpServer server(m_tool.path(QStringLiteral(".")));
    ASSERT_TRUE(server.listen());
    const QString search =
        QStringLiteral("/search?term=maps&entity=software,iPadSoftware,macSoftware&limit=1000&lang=en");
    server.setBody(search, R"({"results": [{"trackName": "Topo Maps", "bundleId": "com.example.topo"}]})");
    server.setContentType(search, "text/javascript; charset=utf-8");
    qputenv("QUORLIN_ITUNES_SEARCH_URL", server.baseUrl().toEncoded());
    const ToolRun run = m_tool.run({"app", "lookup", "maps"});
    EXPECT_EQ(run.exitCode, 0) << run.error.constData();
    EXPECT_EQ(test::lines(run.output),
              (QStringList{"Maps\tcom.apple.Maps\tSystem App", "Topo Maps\tcom.example.topo\tStore App",
                           "maps\tmaps\tBundle Identifier"}));

    server.close();
    const ToolRun offline = m_tool.run({"app", "lookup", "--json", "com.apple.Maps"});
    qputenv("QUORLIN_ITUNES_SEARCH_URL", "http://127.0.0.1:9/");
    EXPECT_EQ(offline.exitCode, 1);
    const QJsonArray rows = test::json(offline.output).array();
    ASSERT_EQ(rows.size(), 1) << "the system app has exactly the identifier typed";
    EXPECT_EQ(rows.first().toObject().value("resultType").toString(), QStringLiteral("systemApp"));
}
