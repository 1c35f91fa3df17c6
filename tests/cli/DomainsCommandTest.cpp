#include "ToolProcess.h"

#include "plist/XmlWriter.h"
#include "support/TestSupport.h"

#include <QDirIterator>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>

#include <gtest/gtest.h>

using namespace quorlin;
using quorlin::test::lines;
using quorlin::test::ToolProcess;
using quorlin::test::ToolRun;

namespace {

// The keys of a profile's own that the bundled general manifest describes.
const int kGeneralKeyCount = 15;

// The standard-form manifests that the build made from the bundled raw ones.
qsizetype bundledManifestCount() {
    return QDir(QStringLiteral(QUORLIN_BINARY_DIR "/share/quorlin-profile-editor/Manifests"))
        .entryList({"*.plist"}, QDir::Files)
        .size();
}

QJsonArray jsonArray(const QByteArray& output) {
    const QJsonDocument document = test::json(output);
    EXPECT_TRUE(document.isArray());
    return document.array();
}

QJsonObject domainObject(const QString& domain, const QString& title, const QString& category,
                         const QStringList& platforms, int keyCount) {
    return QJsonObject{{"domain", domain},
                       {"title", title},
                       {"category", category},
                       {"platforms", QJsonArray::fromStringList(platforms)},
                       {"keyCount", keyCount}};
}

bool copyFolder(const QString& from, const QString& to) {
    QDirIterator it(from, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString source = it.next();
        const QString target = QDir(to).filePath(QDir(from).relativeFilePath(source));
        if (!QDir().mkpath(QFileInfo(target).path()) || !QFile::copy(source, target))
            return false;
    }
    return true;
}

class DomainsCommandTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(m_tool.isValid()); }

    // Saves settings where the tool reads them, as the editor's preferences would.
    void saveSettings(const plist::Dictionary& settings) {
        const QString path =
            m_tool.configFolder() + QStringLiteral("/quorlin-profile-editor/com.quorlin.ProfileEditor.plist");
        ASSERT_TRUE(QDir().mkpath(QFileInfo(path).path()));
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(*plist::XmlWriter::write(settings));
    }
    // A user manifest folder with the supply tests' overrides, chosen in the settings.
    QString chooseUserFolder() {
        const QString folder = m_tool.path(QStringLiteral("My Manifests"));
        EXPECT_TRUE(copyFolder(test::testDataPath("supply/user-folder"), folder));
        saveSettings({{"userManifestFolderBookmark", folder.toUtf8()}});
        return folder;
    }

    ToolProcess m_tool;
};

} // namespace

TEST_F(DomainsCommandTest, ListsTheBundledDomainsWhenNothingElseIsConfigured) {
    const ToolRun run = m_tool.run({"domains"});
    ASSERT_EQ(run.exitCode, 0) << run.error.toStdString();
    const QStringList listed = lines(run.output);
    EXPECT_EQ(listed.size(), bundledManifestCount());
    EXPECT_EQ(listed.first(),
              QStringLiteral("\"\"\tGeneral\troot\t%1\tiOS,macOS,tvOS,watchOS").arg(kGeneralKeyCount));
    for (const QString& line : listed)
        EXPECT_EQ(line.count(u'\t'), 4) << line.toStdString();
    EXPECT_TRUE(run.error.isEmpty());

    const ToolRun json = m_tool.run({"domains", "--json"});
    ASSERT_EQ(json.exitCode, 0) << json.error.toStdString();
    const QJsonArray array = jsonArray(json.output);
    ASSERT_EQ(array.size(), listed.size());
    EXPECT_EQ(array.first(),
              domainObject("", "General", "root", {"iOS", "macOS", "tvOS", "watchOS"}, kGeneralKeyCount));
}

TEST_F(DomainsCommandTest, AUserFolderOverridesTheBundledDomainInTheListing) {
    chooseUserFolder();
    const ToolRun run = m_tool.run({"domains"});
    ASSERT_EQ(run.exitCode, 0) << run.error.toStdString();
    const QStringList listed = lines(run.output);
    // The folder's domains come last, the general one in place of the bundled one.
    EXPECT_EQ(listed.mid(listed.size() - 3),
              (QStringList{
                  "\"\"\tProfile Basics (house rules)\troot\t3\tiOS,macOS,tvOS,watchOS",
                  "com.example.browser\tBrowser (second override)\tapplication\t2\tiOS,macOS,tvOS,watchOS",
                  "com.example.chat\tChat\tuser\t1\tiOS,macOS,tvOS,watchOS",
              }));
    EXPECT_EQ(listed.filter(QRegularExpression("^\"\"\t")).size(), 1);
    EXPECT_EQ(listed.size(), bundledManifestCount() + 2);

    const QJsonArray json = jsonArray(m_tool.run({"domains", "--json"}).output);
    ASSERT_EQ(json.size(), listed.size());
    EXPECT_EQ(json.last().toObject()["title"].toString(), QStringLiteral("Chat"));
}

TEST_F(DomainsCommandTest, ListsTheDomainsOfAFolderAndCountsTheFilesThatGaveNone) {
    // The text form is in tests/data/cli/command-lines.txt.
    const QString folder = test::testDataPath("supply/repository");
    const ToolRun json = m_tool.run({"domains", "--json", "--manifests", folder});
    ASSERT_EQ(json.exitCode, 0) << json.error.toStdString();
    EXPECT_EQ(
        jsonArray(json.output),
        (QJsonArray{domainObject("com.example.mail", "Mail Account", "system", {"macOS"}, 2),
                    domainObject("com.example.browser", "Browser", "application", {"iOS", "macOS"}, 3),
                    domainObject("", "Profile Basics", "root", {"iOS", "macOS", "tvOS", "watchOS"}, 2)}));
    // Standard output holds the array alone; the count goes beside it.
    EXPECT_EQ(json.error, QByteArray("4 files gave no domain\n"));
}

TEST_F(DomainsCommandTest, StopsWithAMessageWhenTheResourcesAreMissing) {
    // A copy of the tool in a folder with no share/ beside it.
    const QString bin = m_tool.path("bin");
    ASSERT_TRUE(QDir().mkpath(bin));
    const QString binaryFolder =
        qEnvironmentVariable("QUORLIN_BIN_DIR", QStringLiteral(QUORLIN_BINARY_DIR "/bin"));
    for (const char* executable : {"quorlin-profile", "quorlin-profile-editor"})
        ASSERT_TRUE(QFile::copy(QDir(binaryFolder).filePath(executable), QDir(bin).filePath(executable)));

    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("XDG_CONFIG_HOME", m_tool.configFolder());
    environment.insert("XDG_DATA_HOME", m_tool.dataFolder());
    QProcess tool;
    tool.setProcessEnvironment(environment);
    tool.start(QDir(bin).filePath("quorlin-profile"), {"domains"});
    ASSERT_TRUE(tool.waitForFinished(60000));
    EXPECT_EQ(tool.exitCode(), 2);
    const QByteArray error = tool.readAllStandardError();
    EXPECT_TRUE(error.startsWith("quorlin-profile domains: The application's resources are missing"))
        << error.toStdString();
    EXPECT_TRUE(error.contains(QDir::cleanPath(m_tool.path("share/quorlin-profile-editor")).toUtf8()));

    // A folder of manifests needs no resources.
    tool.start(QDir(bin).filePath("quorlin-profile"), {"domains", "--manifests", bin});
    ASSERT_TRUE(tool.waitForFinished(60000));
    EXPECT_EQ(tool.exitCode(), 0);

    QProcess editor;
    editor.setProcessEnvironment(environment);
    editor.start(QDir(bin).filePath("quorlin-profile-editor"), {});
    ASSERT_TRUE(editor.waitForFinished(60000));
    EXPECT_EQ(editor.exitCode(), 1);
    EXPECT_TRUE(editor.readAllStandardError().startsWith(
        "quorlin-profile-editor: The application's resources are missing"));
}
