#include "ToolProcess.h"

#include "plist/PlistReader.h"
#include "plist/XmlWriter.h"
#include "support/ScratchMount.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

using namespace quorlin;
using quorlin::test::lines;
using quorlin::test::ToolProcess;
using quorlin::test::ToolRun;

namespace {

const QDateTime kOriginalTime = QDateTime(QDate(2024, 3, 1), QTime(12, 0, 0), Qt::UTC);

std::optional<plist::Dictionary> readTree(const QString& path) {
    const auto read = plist::PlistReader::read(test::readFile(path));
    if (!read || !read->root.dictionary())
        return std::nullopt;
    return *read->root.dictionary();
}

QJsonObject jsonObject(const QByteArray& output) {
    const QJsonDocument document = test::json(output);
    EXPECT_TRUE(document.isObject()) << output.toStdString();
    return document.object();
}

class ManifestsStandardizeCommandTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_tool.isValid());
        // Raw manifests in the public project's dialect and folders, as of kOriginalTime.
        const QString raw = test::testDataPath("cli/standardize/source");
        for (const QString& file : test::filesBelow(raw, {".plist"}))
            writeRaw(QDir(raw).relativeFilePath(file), test::readFile(file));
    }

    QString source(const QString& relative = {}) const {
        return relative.isEmpty() ? m_tool.path("source") : m_tool.path("source/" + relative);
    }
    QString destination(const QString& name = {}) const {
        return name.isEmpty() ? m_tool.path("dest") : m_tool.path("dest/" + name);
    }
    QString store() const { return m_tool.path("store"); }

    void writeRaw(const QString& relative, const QByteArray& manifest,
                  const QDateTime& time = kOriginalTime) {
        ASSERT_TRUE(QDir().mkpath(QFileInfo(source(relative)).path()));
        QFile file(source(relative));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(manifest);
        // Written out first, or closing would stamp the file with the present time.
        ASSERT_TRUE(file.flush());
        ASSERT_TRUE(file.setFileTime(time, QFileDevice::FileModificationTime));
    }

    QStringList destinationEntries() const {
        return QDir(destination())
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
    }

    ToolProcess m_tool;
};

} // namespace

TEST_F(ManifestsStandardizeCommandTest, LeavesExactlyOneStandardFilePerDomainInTheDestination) {
    const ToolRun run = m_tool.run({"manifests", "standardize", source(), destination()});
    ASSERT_EQ(run.exitCode, 0) << run.error.toStdString();
    EXPECT_EQ(destinationEntries(),
              QStringList({"Configuration.plist", "com.example.editor.plist", "com.example.network.plist"}));
    EXPECT_EQ(lines(run.output),
              (QStringList{
                  "Read 4 manifest files from " + source(),
                  "Standardized 3 domains, removed 0; " + destination() + " holds 3 domains",
              }));

    const auto editor = readTree(destination("com.example.editor.plist"));
    ASSERT_TRUE(editor);
    EXPECT_EQ(editor->string("pfm_quorlin_category"), "application") << "from the folder it lay in";
    QStringList names;
    for (const plist::Value& subkey : *editor->array("pfm_subkeys"))
        names << subkey.dictionary()->string("pfm_name").value_or("?");
    EXPECT_TRUE(names.contains("FontSize") && names.contains("Theme")) << "both originals merged";
    const auto general = readTree(destination("Configuration.plist"));
    ASSERT_TRUE(general);
    EXPECT_EQ(general->string("pfm_domain"), QString()) << "the general payload's domain";
    EXPECT_EQ(general->integer("pfm_quorlin_sort_priority"), 0);
    EXPECT_EQ(readTree(destination("com.example.network.plist"))->string("pfm_quorlin_category"), "system");
}

TEST_F(ManifestsStandardizeCommandTest, ASecondRunWithTheSameStoreStandardizesOnlyWhatChanged) {
    const QStringList arguments{"manifests",   "standardize", "--json", source(),
                                destination(), "--store",     store()};
    ASSERT_EQ(m_tool.run(arguments).exitCode, 0);
    const QDateTime networkWritten = QFileInfo(destination("com.example.network.plist")).lastModified();

    const ToolRun again = m_tool.run(arguments);
    ASSERT_EQ(again.exitCode, 0) << again.error.toStdString();
    const QJsonObject summary = jsonObject(again.output);
    EXPECT_EQ(summary["filesRead"].toInt(), 4);
    EXPECT_EQ(summary["domainsWritten"].toInt(), 0);
    EXPECT_EQ(summary["domainsInDestination"].toInt(), 3);
    EXPECT_EQ(summary["skipped"].toArray().size(), 0);

    writeRaw("Manifests/ManagedPreferencesApplications/com.example.editor-ios.plist",
             test::readFile(test::testDataPath("cli/standardize/com.example.editor-ios-colour.plist")),
             kOriginalTime.addSecs(60));
    const QJsonObject touched = jsonObject(m_tool.run(arguments).output);
    EXPECT_EQ(touched["domainsWritten"].toInt(), 1);
    EXPECT_EQ(QFileInfo(destination("com.example.network.plist")).lastModified(), networkWritten);
    EXPECT_TRUE(test::readFile(destination("com.example.editor.plist")).contains("Colour"));

    // Without the store every run is complete.
    EXPECT_EQ(jsonObject(m_tool.run({"manifests", "standardize", "--json", source(), destination()})
                             .output)["domainsWritten"]
                  .toInt(),
              3);
}

TEST_F(ManifestsStandardizeCommandTest, RemovesWhatNoLongerHasAnOriginalAndListsSkippedFiles) {
    ASSERT_EQ(m_tool.run({"manifests", "standardize", source(), destination(), "--store", store()}).exitCode,
              0);
    ASSERT_TRUE(QFile::remove(source("Manifests/ManifestsApple/com.example.network.plist")));
    writeRaw("Manifests/ManagedPreferencesDeveloper/nodomain.plist",
             test::readFile(test::testDataPath("cli/standardize/nodomain.plist")));

    const ToolRun run = m_tool.run({"manifests", "standardize", source(), destination(), "--store", store()});
    EXPECT_EQ(run.exitCode, 1) << "a skipped file is a finding";
    EXPECT_EQ(destinationEntries(), QStringList({"Configuration.plist", "com.example.editor.plist"}));
    EXPECT_EQ(lines(run.output).mid(1),
              (QStringList{
                  "Standardized 0 domains, removed 1; " + destination() + " holds 2 domains",
                  "Skipped 1 file that gave no standardized manifest:",
                  "  Manifests/ManagedPreferencesDeveloper/nodomain.plist",
              }));
}

TEST_F(ManifestsStandardizeCommandTest, AFlatFolderOfManifestsHasNoCategories) {
    const QString flat = source("Manifests/ManagedPreferencesApplications");
    const ToolRun run = m_tool.run({"manifests", "standardize", flat, destination()});
    ASSERT_EQ(run.exitCode, 0) << run.error.toStdString();
    EXPECT_EQ(destinationEntries(), QStringList({"com.example.editor.plist"}));
    EXPECT_FALSE(readTree(destination("com.example.editor.plist"))->contains("pfm_quorlin_category"));
}

TEST_F(ManifestsStandardizeCommandTest, RefusesDestinationsItMustNotEmpty) {
    ASSERT_TRUE(QDir().mkpath(destination()));
    QFile notes(destination("notes.txt"));
    ASSERT_TRUE(notes.open(QIODevice::WriteOnly));
    notes.close();
    EXPECT_EQ(m_tool.run({"manifests", "standardize", source(), destination()}).exitCode, 2);
    EXPECT_EQ(destinationEntries(), QStringList({"notes.txt"})) << "nothing of the user's is removed";

    EXPECT_EQ(m_tool.run({"manifests", "standardize", source(), source("Manifests")}).exitCode, 2)
        << "the destination would empty the source";
    EXPECT_EQ(
        m_tool.run({"manifests", "standardize", source(), m_tool.path("d2"), "--store", source("store")})
            .exitCode,
        2);
}

TEST_F(ManifestsStandardizeCommandTest, SupportFilesOverlayTheirDomains) {
    const QString support = m_tool.path("support");
    ASSERT_TRUE(QDir().mkpath(support));
    QFile file(support + "/com.example.network manifest-support.plist");
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(*plist::XmlWriter::write(plist::Dictionary{{"pfm_title", "Network (corrected)"}}));
    file.close();

    const ToolRun run =
        m_tool.run({"manifests", "standardize", source(), destination(), "--support", support});
    ASSERT_EQ(run.exitCode, 0) << run.error.toStdString();
    EXPECT_EQ(readTree(destination("com.example.network.plist"))->string("pfm_title"), "Network (corrected)");
    EXPECT_EQ(readTree(destination("com.example.editor.plist"))->string("pfm_title"), "Editor");
}

TEST_F(ManifestsStandardizeCommandTest, AFullDiskIsReportedWithItsReason) {
    const test::ScratchMount full;
    if (!full.isMounted())
        GTEST_SKIP() << test::ScratchMount::kSkipReason;
    ASSERT_TRUE(QDir().mkpath(full.path("dest")));
    full.fillAfter("other", {});
    const ToolRun run = m_tool.run({"manifests", "standardize", source(), full.path("dest")});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_TRUE(run.error.contains(": cannot write: no space left on the device")) << run.error.toStdString();
}
