#include "ToolProcess.h"

#include "plist/XmlWriter.h"
#include "support/LocalHttpServer.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

using namespace quorlin;
using quorlin::test::ToolProcess;
using quorlin::test::ToolRun;

namespace {

bool writePlist(const QString& path, const plist::Dictionary& root) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(*plist::XmlWriter::write(root)) > 0;
}

plist::Dictionary rawManifest(const QString& domain) {
    return plist::Dictionary{
        {"pfm_domain", domain},
        {"pfm_title", "Title of " + domain},
        {"pfm_description", "A manifest of our own."},
        {"pfm_format_version", 1},
        {"pfm_platforms", plist::Array{"macOS"}},
        {"pfm_last_modified", plist::Date{700000000.0}},
        {"pfm_subkeys", plist::Array{plist::Dictionary{{"pfm_name", "Enabled"}, {"pfm_type", "boolean"}}}}};
}

// The tool against a repository served on the loopback interface; the
// server answers while the test waits for the tool, so the wait turns the
// event loop instead of blocking it.
class ManifestsUpdateCommandTest : public ::testing::Test {
protected:
    void SetUp() override {
        plist::Dictionary entries;
        for (const QString& domain :
             {QStringLiteral("com.example.alpha"), QStringLiteral("com.example.beta")}) {
            const QString path = "Manifests/ManifestsApple/" + domain + ".plist";
            ASSERT_TRUE(writePlist(m_served.filePath("owner/repo/master/" + path), rawManifest(domain)));
            entries.insert(domain, plist::Dictionary{{"path", path}, {"modified", plist::Date{1000.0}}});
        }
        ASSERT_TRUE(writePlist(m_served.filePath("owner/repo/master/Manifests/index"),
                               plist::Dictionary{{"ManifestsApple", entries}}));
        ASSERT_TRUE(m_server.listen());
        qputenv("QUORLIN_RAW_CONTENT_URL", m_server.baseUrl().toString().toUtf8());
    }
    void TearDown() override { qputenv("QUORLIN_RAW_CONTENT_URL", "http://127.0.0.1:9/"); }

    ToolRun run(const QStringList& arguments) { return m_tool.run(arguments); }

    QJsonObject runJson(const QStringList& arguments, int expectedExitCode) {
        const ToolRun result = run(arguments);
        EXPECT_EQ(result.exitCode, expectedExitCode) << result.error.toStdString();
        return QJsonDocument::fromJson(result.output).object();
    }

    void setOnlineSettings() {
        ASSERT_TRUE(writePlist(
            m_tool.configFolder() + "/quorlin-profile-editor/com.quorlin.ProfileEditor.plist",
            plist::Dictionary{{"manifestRepositoryType", "online"},
                              {"onlineManifestRepositoryAddress", "https://github.com/owner/repo"}}));
    }

    QTemporaryDir m_served;
    test::LocalHttpServer m_server{m_served.path()};
    ToolProcess m_tool;
};

} // namespace

TEST_F(ManifestsUpdateCommandTest, DownloadsThenFindsNothingNewAndShowsTheStore) {
    setOnlineSettings();
    const QJsonObject first = runJson({"manifests", "update", "--json"}, 0);
    EXPECT_EQ(first["updated"].toArray(), (QJsonArray{"com.example.alpha", "com.example.beta"}));
    EXPECT_TRUE(first["errors"].toArray().isEmpty());
    EXPECT_TRUE(QFileInfo::exists(first["store"].toString() + "/standardized/com.example.alpha.plist"));

    const ToolRun second = run({"manifests", "update"});
    EXPECT_EQ(second.exitCode, 0);
    EXPECT_TRUE(second.output.isEmpty());
    EXPECT_TRUE(second.error.contains("up to date"));

    const QJsonObject status = runJson({"manifests", "status", "--json"}, 0);
    EXPECT_EQ(status["type"].toString(), "online");
    EXPECT_EQ(status["manifests"].toInt(), 2);
    EXPECT_EQ(status["store"].toString(), first["store"].toString());
    EXPECT_EQ(status["lastUpdateItems"].toArray().size(), 2);
}

TEST_F(ManifestsUpdateCommandTest, FailuresSayWhyInTheEditorsWords) {
    m_server.setStatus("/owner/repo/master/Manifests/index", 404);
    const ToolRun missing = run({"manifests", "update", "--address", "https://github.com/owner/repo"});
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_TRUE(missing.error.contains("because the repository index could not be fetched."))
        << missing.error.toStdString();

    const ToolRun invalid = run({"manifests", "update", "--address", "https://example.com/owner/repo"});
    EXPECT_EQ(invalid.exitCode, 2);
    EXPECT_TRUE(invalid.error.contains("it has an invalid address.")) << invalid.error.toStdString();

    ASSERT_TRUE(writePlist(m_tool.configFolder() + "/quorlin-profile-editor/com.quorlin.ProfileEditor.plist",
                           plist::Dictionary{{"manifestRepositoryType", "quorlin_standard"}}));
    const QJsonObject bundled = runJson({"manifests", "status", "--json"}, 0);
    EXPECT_EQ(bundled["type"].toString(), "bundled");
    EXPECT_GT(bundled["manifests"].toInt(), 0);
}
