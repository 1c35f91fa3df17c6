#include "StandardizationFixtures.h"

#include "supply/GitHubManifestRepository.h"

#include "support/LocalHttpServer.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

using namespace quorlin;
using quorlin::test::LocalHttpServer;
using Verification = GitHubRepositoryStatus::VerificationStatuses;

namespace {

const QString kAddress = QStringLiteral("https://github.com/owner/manifests");
const QString kBranch = QStringLiteral("main");
const QString kRawRoot = QStringLiteral("owner/manifests/main");

// A copy of the manifest corpus served in GitHub's raw layout by a server on
// the loopback interface, and a store the repository mirrors it into.
class GitHubManifestRepositoryTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(test::copyFolder(test::corpusPath("profile-manifests/Manifests"), rawPath("Manifests")));
        ASSERT_TRUE(QFileInfo::exists(rawPath("Manifests/index")));
        ASSERT_TRUE(m_server.listen());
        qputenv("QUORLIN_RAW_CONTENT_URL", m_server.baseUrl().toString().toUtf8());
    }
    void TearDown() override { qputenv("QUORLIN_RAW_CONTENT_URL", "http://127.0.0.1:9/"); }

    QString rawPath(const QString& relative) const { return m_served.filePath(kRawRoot + u'/' + relative); }
    QString storeRoot() const { return m_store.filePath("store"); }

    std::unique_ptr<GitHubManifestRepository> open() {
        auto repository = GitHubManifestRepository::make(storeRoot(), kAddress, kBranch, std::nullopt);
        if (repository)
            waitForCheck(*repository);
        return repository;
    }

    static void waitForCheck(GitHubManifestRepository& repository) {
        ASSERT_TRUE(QTest::qWaitFor([&] { return !repository.status().isCheckingForUpdates(); }, 60000));
    }

    // Entries of the served index: category, domain and its entry.
    plist::Dictionary servedIndex() const { return test::readDictionary(rawPath("Manifests/index")); }
    void serveIndex(const plist::Dictionary& index) {
        ASSERT_TRUE(test::writeManifest(rawPath("Manifests/index"), index));
    }

    QStringList manifestRequests() const {
        QStringList paths = m_server.requestedPaths();
        paths.removeAll("/" + kRawRoot + "/Manifests/index");
        return paths;
    }

    QTemporaryDir m_served;
    QTemporaryDir m_store;
    LocalHttpServer m_server{m_served.path()};
};

// The number of usable entries in the served index, as the repository must read them.
int usableEntries(const plist::Dictionary& index) {
    int count = 0;
    for (auto category = index.begin(); category != index.end(); ++category) {
        if (category.key() == "ManagedPreferencesDeveloper" || !category.value().dictionary())
            continue;
        for (const auto& entry : *category.value().dictionary()) {
            const auto path = entry.dictionary() ? entry.dictionary()->string("path") : std::nullopt;
            if (path && ManifestIndex::isSafePath(*path))
                ++count;
        }
    }
    return count;
}

} // namespace

TEST_F(GitHubManifestRepositoryTest, AFirstCheckMirrorsTheWholeRepository) {
    auto repository = open();
    ASSERT_TRUE(repository);
    EXPECT_TRUE(repository->status().errors().isEmpty());
    EXPECT_EQ(repository->validationStatus().verificationStatus(), Verification::verified);

    const int expected = usableEntries(servedIndex());
    EXPECT_GT(expected, 100);
    EXPECT_EQ(manifestRequests().size(), expected);
    EXPECT_EQ(repository->manifestFiles().size(), expected);
    EXPECT_GT(repository->standardizedManifests().size(), 100);
    EXPECT_TRUE(QFileInfo::exists(repository->standardizedIndexPath()));
    ASSERT_TRUE(repository->lastUpdates());
    EXPECT_EQ(repository->lastUpdates()->updateResultsItems.size(),
              repository->status().lastResults().size());
}

TEST_F(GitHubManifestRepositoryTest, ASecondCheckFetchesOnlyWhatChangedAndReportsRemovals) {
    auto repository = open();
    ASSERT_TRUE(repository);
    plist::Dictionary index = servedIndex();
    plist::Dictionary apple = *index.dictionary("ManifestsApple");

    // One manifest changes, with a later date in the index.
    plist::Dictionary dockEntry = *apple.dictionary("com.apple.dock");
    const QString dockPath = *dockEntry.string("path");
    plist::Dictionary dock = test::readDictionary(rawPath(dockPath));
    dock.insert("pfm_title", "Dock, changed");
    ASSERT_TRUE(test::writeManifest(rawPath(dockPath), dock));
    dockEntry.insert("modified", plist::Date{dockEntry.date("modified")->secondsSinceReferenceDate + 86400});
    apple.insert("com.apple.dock", dockEntry);
    // One domain goes.
    const QString fontPath = *apple.dictionary("com.apple.font")->string("path");
    apple.remove("com.apple.font");
    index.insert("ManifestsApple", apple);
    serveIndex(index);
    m_server.clearRequestedPaths();
    repository->status().setLastResults({});

    repository->checkForUpdates();
    waitForCheck(*repository);
    EXPECT_TRUE(repository->status().errors().isEmpty());
    EXPECT_EQ(manifestRequests(), QStringList{"/" + kRawRoot + "/" + dockPath});
    EXPECT_FALSE(QFileInfo::exists(repository->originalManifestsDirectory() + "/" + fontPath));
    const auto& results = repository->status().lastResults();
    ASSERT_TRUE(results.contains("com.apple.dock"));
    EXPECT_EQ(results["com.apple.dock"].status, UpdateResultsItem::UpdateStatuses::updated);
    ASSERT_TRUE(results.contains("com.apple.font"));
    EXPECT_EQ(results["com.apple.font"].status, UpdateResultsItem::UpdateStatuses::removed);
    EXPECT_EQ(repository->manifest("com.apple.dock")->string("pfm_title"), "Dock, changed");

    // Nothing new: nothing is fetched but the index.
    m_server.clearRequestedPaths();
    repository->checkForUpdates();
    waitForCheck(*repository);
    EXPECT_TRUE(manifestRequests().isEmpty());
}

TEST_F(GitHubManifestRepositoryTest, AFailedCheckKeepsTheManifestsInForce) {
    auto repository = open();
    ASSERT_TRUE(repository);
    const qsizetype inForce = repository->standardizedManifests().size();
    const QString indexPath = "/" + kRawRoot + "/Manifests/index";
    const QByteArray index = quorlin::test::readFile(rawPath("Manifests/index"));

    struct Case {
        const char* name;
        std::function<void()> arrange;
        GitHubRepositoryError error;
    };
    const std::vector<Case> cases{
        {"missing index", [&] { m_server.setStatus(indexPath, 404); },
         GitHubRepositoryError::failedRetrievingIndex},
        {"truncated index", [&] { m_server.setBody(indexPath, index.left(index.size() / 2)); },
         GitHubRepositoryError::parsingDownloadedIndexFailed},
        {"empty body", [&] { m_server.setBody(indexPath, {}); },
         GitHubRepositoryError::parsingDownloadedIndexFailed},
        {"server error", [&] { m_server.setStatus(indexPath, 500); },
         GitHubRepositoryError::failedRetrievingIndex},
    };
    for (const Case& scenario : cases) {
        m_server.clearOverrides();
        scenario.arrange();
        repository->checkForUpdates();
        waitForCheck(*repository);
        ASSERT_EQ(repository->status().errors().size(), 1) << scenario.name;
        EXPECT_EQ(repository->status().errors().first(), scenario.error) << scenario.name;
        EXPECT_EQ(repository->validationStatus().verificationStatus(), Verification::failed) << scenario.name;
        EXPECT_EQ(repository->standardizedManifests().size(), inForce) << scenario.name;
    }

    m_server.clearOverrides();
    m_server.close();
    repository->checkForUpdates();
    waitForCheck(*repository);
    ASSERT_EQ(repository->status().errors().size(), 1);
    EXPECT_EQ(repository->status().errors().first(), GitHubRepositoryError::unknown);
    EXPECT_EQ(repository->standardizedManifests().size(), inForce);
}

TEST_F(GitHubManifestRepositoryTest, AHostileIndexWritesNothingOutsideTheStore) {
    const QString outside = m_store.filePath("escaped.plist");
    QFile::copy(rawPath("Manifests/ManifestsApple/com.apple.dock.plist"), m_served.filePath("escaped.plist"));
    plist::Dictionary domains;
    const QStringList hostile{"../../../escaped.plist", "/escaped.plist", "Manifests/../../escaped.plist",
                              "Manifests\\..\\..\\escaped.plist", "Manifests/%2e%2e/%2e%2e/escaped.plist"};
    for (int i = 0; i < hostile.size(); ++i)
        domains.insert(QStringLiteral("hostile%1").arg(i), plist::Dictionary{{"path", hostile[i]}});
    domains.insert("com.apple.dock",
                   plist::Dictionary{{"path", "Manifests/ManifestsApple/com.apple.dock.plist"}});
    serveIndex(plist::Dictionary{{"ManifestsApple", domains}});

    auto repository = open();
    ASSERT_TRUE(repository);
    EXPECT_TRUE(repository->status().errors().isEmpty());
    EXPECT_EQ(manifestRequests().size(), 1);
    EXPECT_FALSE(QFileInfo::exists(outside));
    EXPECT_EQ(repository->manifestFiles().size(), 1);
}

TEST_F(GitHubManifestRepositoryTest, OversizedManifestsAreRefusedAndTheRestArrives) {
    const QString dockPath = "/" + kRawRoot + "/Manifests/ManifestsApple/com.apple.dock.plist";
    m_server.setBody(dockPath, QByteArray(GitHubManifestRepository::maximumManifestSize + 1, ' '));
    auto repository = open();
    ASSERT_TRUE(repository);
    EXPECT_TRUE(repository->status().errors().contains(GitHubRepositoryError::failedRetrievingManifest));
    EXPECT_FALSE(repository->manifest("com.apple.dock"));
    EXPECT_TRUE(repository->manifest("com.apple.font"));
    // The index isn't kept after a partial download, so the next check heals it.
    m_server.clearOverrides();
    m_server.clearRequestedPaths();
    repository->checkForUpdates();
    waitForCheck(*repository);
    EXPECT_TRUE(repository->manifest("com.apple.dock"));
}

TEST_F(GitHubManifestRepositoryTest, ACancelledCheckEndsQuietly) {
    m_server.stall("/" + kRawRoot + "/Manifests/index");
    auto repository = GitHubManifestRepository::make(storeRoot(), kAddress, kBranch, std::nullopt);
    ASSERT_TRUE(repository);
    EXPECT_TRUE(repository->status().isCheckingForUpdates());
    QTest::qWait(50);
    repository->cancelCheck();
    EXPECT_FALSE(repository->status().isCheckingForUpdates());
    EXPECT_TRUE(repository->status().errors().isEmpty());
    EXPECT_EQ(repository->validationStatus().verificationStatus(), Verification::notVerified);
}

TEST(GitHubManifestRepositoryRules, AddressesBranchesAndTheCommitLog) {
    EXPECT_FALSE(
        GitHubManifestRepository::make(QDir::tempPath() + "/never", "https://gitlab.com/o/r", "main", {}));
    EXPECT_TRUE(GitHubManifestRepository::branchIsValid("release/2.0"));
    EXPECT_FALSE(GitHubManifestRepository::branchIsValid("topic.lock"));
    EXPECT_FALSE(GitHubManifestRepository::addressIsValid("https://github.com/owner"));

    QTemporaryDir store;
    qputenv("QUORLIN_RAW_CONTENT_URL", "http://127.0.0.1:9/");
    auto repository =
        GitHubManifestRepository::make(store.path(), "https://github.com/owner/repo", "release/2.0", {});
    ASSERT_TRUE(repository);
    repository->cancelCheck();
    EXPECT_EQ(repository->commitLogURL().toString(), "https://github.com/owner/repo/commits/release/2.0");
    EXPECT_EQ(repository->manifestsIndexURL().toString(),
              "http://127.0.0.1:9/owner/repo/release/2.0/Manifests/index");

    auto invalidBranch =
        GitHubManifestRepository::make(store.path(), "https://github.com/owner/repo", "a..b", {});
    ASSERT_TRUE(invalidBranch);
    EXPECT_FALSE(invalidBranch->status().isCheckingForUpdates());
    EXPECT_EQ(invalidBranch->status().errors(), QList{GitHubRepositoryError::branchIsInvalid});
    EXPECT_EQ(invalidBranch->validationStatus().verificationStatus(), Verification::failed);
    qputenv("QUORLIN_RAW_CONTENT_URL", "http://127.0.0.1:9/");
}
