#include "supply/RepositoryStorePaths.h"
#include "support/TestSupport.h"

#include <QDir>

#include <gtest/gtest.h>

using quorlin::RepositoryStorePaths;

namespace {

const QString kAddress = QStringLiteral("https://github.com/ProfileManifests/ProfileManifests");

QString gitHubRoot() {
    return RepositoryStorePaths::gitHubStorageRoot().value_or(QString());
}

} // namespace

TEST(RepositoryStorePaths, RootsLieInTheApplicationDataFolder) {
    const QString data = RepositoryStorePaths::applicationDataFolder();
    ASSERT_FALSE(data.isEmpty());
    EXPECT_EQ(RepositoryStorePaths::storeRoot(), data + QStringLiteral("/manifest-repositories"));
    EXPECT_EQ(RepositoryStorePaths::gitHubStorageRoot(),
              data + QStringLiteral("/manifest-repositories/github"));
    EXPECT_EQ(RepositoryStorePaths::localStorageRoot(),
              data + QStringLiteral("/manifest-repositories/local"));
}

TEST(RepositoryStorePaths, ALocalFolderIsStoredUnderTheSha1OfItsUtf8Path) {
    const QString local = RepositoryStorePaths::localStorageRoot().value_or(QString());
    // Digests from the published test vector and from an independent SHA-1.
    EXPECT_EQ(RepositoryStorePaths::storageDirectoryForLocalFolder(QStringLiteral("abc")),
              local + QStringLiteral("/a9993e364706816aba3e25717850c26c9cd0d89d"));
    EXPECT_EQ(
        RepositoryStorePaths::storageDirectoryForLocalFolder(QString::fromUtf8("/home/zo\xc3\xab/Manifests")),
        local + QStringLiteral("/0283050a158e2eff3a6bbf8c4dbd1dae21ef21de"));
    EXPECT_FALSE(RepositoryStorePaths::storageDirectoryForLocalFolder(QString()));
}

TEST(RepositoryStorePaths, AnOnlineStoreHasOneLevelPerBranchComponent) {
    EXPECT_EQ(RepositoryStorePaths::storageDirectoryForRepositoryAddress(kAddress, "master"),
              gitHubRoot() + QStringLiteral("/ProfileManifests/ProfileManifests/master"));
    EXPECT_EQ(RepositoryStorePaths::storageDirectoryForRepositoryAddress(kAddress, "release/1.0"),
              gitHubRoot() + QStringLiteral("/ProfileManifests/ProfileManifests/release/1.0"));
    // Empty path components don't add levels.
    EXPECT_EQ(RepositoryStorePaths::storageDirectoryForRepositoryAddress(
                  "https://www.github.com//owner//repo/", "dev"),
              gitHubRoot() + QStringLiteral("/owner/repo/dev"));
}

TEST(RepositoryStorePaths, PathsThatClimbOutOfTheRootAreRefused) {
    // Through the branch: the branch rule refuses "..".
    EXPECT_FALSE(RepositoryStorePaths::storageDirectoryForRepositoryAddress(kAddress, "../../../escape"));
    EXPECT_FALSE(RepositoryStorePaths::storageDirectoryForRepositoryAddress(kAddress, "a/../../b"));
    // Through the address, literally or percent-encoded: the confinement check refuses them.
    EXPECT_FALSE(
        RepositoryStorePaths::storageDirectoryForRepositoryAddress("https://github.com/../../x", "master"));
    EXPECT_FALSE(RepositoryStorePaths::storageDirectoryForRepositoryAddress(
        "https://github.com/%2E%2E/%2E%2E", "master"));
    EXPECT_FALSE(
        RepositoryStorePaths::storageDirectoryForRepositoryAddress("https://github.com/..", "master"));
    // Climbing and coming back stays inside, and lands where it says.
    EXPECT_EQ(
        RepositoryStorePaths::storageDirectoryForRepositoryAddress("https://github.com/a/../b", "master"),
        gitHubRoot() + QStringLiteral("/b/master"));

    const QString root = QStringLiteral("/data/store");
    EXPECT_TRUE(RepositoryStorePaths::isInside("/data/store/github/x", root));
    EXPECT_FALSE(RepositoryStorePaths::isInside("/data/store", root));
    EXPECT_FALSE(RepositoryStorePaths::isInside("/data/store/", root));
    EXPECT_FALSE(RepositoryStorePaths::isInside("/data/store-other/x", root));
    EXPECT_FALSE(RepositoryStorePaths::isInside("/data/store/x/../../elsewhere", root));
    EXPECT_FALSE(RepositoryStorePaths::isInside("/data/store/x", QString()));
}

TEST(RepositoryStorePaths, AnAddressNamesAnOwnerAndARepositoryOnTheGitHubWebHost) {
    for (const char* valid :
         {"https://github.com/ProfileManifests/ProfileManifests", "http://github.com/o/r",
          "https://www.github.com/o/r", "https://GitHub.com/o/r", "https://github.com/o/r/"}) {
        EXPECT_TRUE(RepositoryStorePaths::addressIsValid(valid)) << valid;
    }
    for (const char* invalid :
         {"https://github.com/o/r/tree", "https://github.com/o/r/tree/master", "https://github.com/o",
          "https://github.com/", "https://gitlab.com/o/r", "https://api.github.com/o/r",
          "https://raw.githubusercontent.com/o/r", "https://github.com.example.net/o/r",
          "ftp://github.com/o/r", "github.com/o/r", "not an address", ""}) {
        EXPECT_FALSE(RepositoryStorePaths::addressIsValid(invalid)) << invalid;
    }
}

TEST(RepositoryStorePaths, BranchNamesFollowTheReferenceNameRules) {
    for (const char* valid : {"master", "quorlin_standard", "release/1.0", "feature-x", "v1.2.3", "a.b/c"}) {
        EXPECT_TRUE(RepositoryStorePaths::branchIsValid(valid)) << valid;
    }
    for (const char* invalid :
         {"",        "main.lock", "topic/x.lock", ".hidden", "a/.b",  "a..b", "with space",
          "a~1",     "a^2",       "a:b",          "a?",      "a*",    "a[b",  "tab\there",
          "del\x7f", "/lead",     "trail/",       "a//b",    "ends.", "@",    "back\\slash"}) {
        EXPECT_FALSE(RepositoryStorePaths::branchIsValid(invalid)) << invalid;
    }
}
