#include "StandardizationFixtures.h"

#include "supply/StaleStoreRemover.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace quorlin;

namespace {

class StaleStoreRemoverTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(m_folder.isValid()); }
    QString path(const QString& relative) const { return m_folder.filePath(relative); }
    void file(const QString& relative) { ASSERT_TRUE(test::writeBytes(path(relative), "x")); }
    bool exists(const QString& relative) const { return QFileInfo::exists(path(relative)); }

    QTemporaryDir m_folder;
};

} // namespace

TEST_F(StaleStoreRemoverTest, KeepsTheStoresInUseAndTheWayToThemAndRemovesTheRest) {
    file("github/owner/repo/master/index.plist");
    file("github/owner/repo/release/1.0/index.plist");
    file("github/owner/repo/old-branch/index.plist");
    file("github/owner/repo-two/master/index.plist");
    file("github/other/x/master/index.plist");
    file("github/owner/stray-file");
    file("github/.hidden-store/index.plist");
    file("local/0123abcd/index.plist");
    file("local/89efabcd/index.plist");

    StaleStoreRemover::removeStaleStores(
        {path("github"), path("local")},
        // Unclean spellings of a kept path keep it all the same.
        {path("github/owner/repo/master"), path("github/owner/repo/release//1.0/"), path("local/0123abcd")});

    EXPECT_TRUE(exists("github/owner/repo/master/index.plist"));
    EXPECT_TRUE(exists("github/owner/repo/release/1.0/index.plist"));
    EXPECT_TRUE(exists("local/0123abcd/index.plist"));
    for (const char* gone : {"github/owner/repo/old-branch", "github/owner/repo-two", "github/other",
                             "github/owner/stray-file", "github/.hidden-store", "local/89efabcd"})
        EXPECT_FALSE(exists(gone)) << gone;
}

TEST_F(StaleStoreRemoverTest, WithNothingKeptEveryStoreGoesButTheRootsStay) {
    file("github/owner/repo/master/index.plist");
    file("local/0123abcd/index.plist");
    StaleStoreRemover::removeStaleStores({path("github"), path("local"), path("never-made"), QString()}, {});
    EXPECT_TRUE(QDir(path("github")).isEmpty());
    EXPECT_TRUE(QDir(path("local")).isEmpty());
    EXPECT_TRUE(exists("github"));
    EXPECT_FALSE(exists("never-made"));
}

TEST_F(StaleStoreRemoverTest, ALinkInTheStoreGoesWithoutTouchingWhatItPointsTo) {
    file("elsewhere/precious/file.txt");
    file("github/owner/repo/master/index.plist");
    QDir().mkpath(path("github/owner"));
    ASSERT_TRUE(QFile::link(path("elsewhere/precious"), path("github/linked")));
    // Even a link that sits on the way to a kept store is not walked.
    ASSERT_TRUE(QFile::link(path("elsewhere"), path("github/way")));

    StaleStoreRemover::removeStaleStores({path("github")},
                                         {path("github/owner/repo/master"), path("github/way/precious")});

    EXPECT_FALSE(QFileInfo(path("github/linked")).isSymLink());
    EXPECT_FALSE(QFileInfo(path("github/way")).isSymLink());
    EXPECT_TRUE(exists("elsewhere/precious/file.txt"));
    EXPECT_TRUE(exists("github/owner/repo/master/index.plist"));
}
