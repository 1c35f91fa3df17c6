#include "StandardizationFixtures.h"

#include "supply/LocalManifestRepository.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

using namespace quorlin;

namespace {

plist::Dictionary manifest(const QString& domain, const QString& title) {
    return test::manifestTree(domain, {test::keyTree("Enabled", "boolean")},
                              {{"pfm_title", title}, {"pfm_last_modified", plist::Date{700000000.0}}});
}

bool write(const QString& path, const plist::Dictionary& dictionary) {
    return test::writeManifest(path, dictionary);
}

std::optional<QString> titleOf(const LocalManifestRepository& repository, const QString& domain) {
    const auto found = repository.manifest(domain);
    return found ? found->string("pfm_title") : std::nullopt;
}

// Waits on the event loop for the watch and the refresh it queues.
bool eventually(const std::function<bool()>& condition) {
    return QTest::qWaitFor(condition, 1000);
}

} // namespace

TEST(LocalManifestRepository, PicksUpAddedChangedAndRemovedManifestsWithinASecond) {
    QTemporaryDir folder;
    QTemporaryDir storage;
    ASSERT_TRUE(write(folder.filePath("com.example.one.plist"), manifest("com.example.one", "One")));
    auto repository = LocalManifestRepository::make(storage.path(), folder.path(), std::nullopt);
    ASSERT_TRUE(repository);
    EXPECT_EQ(titleOf(*repository, "com.example.one"), "One");

    ASSERT_TRUE(
        write(folder.filePath("Nested/Deeper/com.example.two.plist"), manifest("com.example.two", "Two")));
    EXPECT_TRUE(eventually([&] { return titleOf(*repository, "com.example.two") == "Two"; }));
    EXPECT_EQ(repository->status().lastResults().value("com.example.two").status,
              UpdateResultsItem::UpdateStatuses::updated);

    // Saved through a temporary file and a rename, as careful editors do;
    // a second later than the first version, since changes are told by date.
    ASSERT_TRUE(write(folder.filePath(".one.tmp"), manifest("com.example.one", "One, edited")));
    QFile edited(folder.filePath(".one.tmp"));
    ASSERT_TRUE(edited.open(QIODevice::ReadWrite));
    ASSERT_TRUE(
        edited.setFileTime(QDateTime::currentDateTimeUtc().addSecs(2), QFileDevice::FileModificationTime));
    edited.close();
    ASSERT_TRUE(QFile::remove(folder.filePath("com.example.one.plist")));
    ASSERT_TRUE(QFile::rename(folder.filePath(".one.tmp"), folder.filePath("com.example.one.plist")));
    EXPECT_TRUE(eventually([&] { return titleOf(*repository, "com.example.one") == "One, edited"; }));

    ASSERT_TRUE(QFile::remove(folder.filePath("Nested/Deeper/com.example.two.plist")));
    EXPECT_TRUE(eventually([&] {
        return repository->status().lastResults().value("com.example.two").status ==
               UpdateResultsItem::UpdateStatuses::removed;
    }));
    EXPECT_FALSE(QFileInfo::exists(repository->standardizedManifestsDirectory() + "/com.example.two.plist"));
}

TEST(LocalManifestRepository, TellsAProfileManifestsCloneByItsIndex) {
    QTemporaryDir clone;
    QTemporaryDir storage;
    ASSERT_TRUE(write(clone.filePath("Manifests/ManifestsApple/com.example.in.plist"),
                      manifest("com.example.in", "In")));
    ASSERT_TRUE(write(clone.filePath("Elsewhere/com.example.out.plist"), manifest("com.example.out", "Out")));
    ASSERT_TRUE(write(clone.filePath("Manifests/index"), plist::Dictionary{}));
    auto repository = LocalManifestRepository::make(storage.filePath("a"), clone.path(), std::nullopt);
    ASSERT_TRUE(repository);
    EXPECT_TRUE(repository->manifest("com.example.in"));
    EXPECT_FALSE(repository->manifest("com.example.out"));

    // An index that isn't a property list makes it a plain folder.
    ASSERT_TRUE(test::writeBytes(clone.filePath("Manifests/index"), "not a plist"));
    auto plain = LocalManifestRepository::make(storage.filePath("b"), clone.path(), std::nullopt);
    ASSERT_TRUE(plain);
    EXPECT_TRUE(plain->manifest("com.example.out"));
}

TEST(LocalManifestRepository, NeedsAFolder) {
    QTemporaryDir storage;
    EXPECT_FALSE(LocalManifestRepository::make(storage.path(), storage.filePath("missing"), std::nullopt));
}
