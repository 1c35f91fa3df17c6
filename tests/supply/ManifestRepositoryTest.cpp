#include "StandardizationFixtures.h"

#include "supply/BundledManifestRepository.h"
#include "supply/ManifestRepository.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace quorlin;

namespace {

QStringList domainsOf(const ManifestRepository& repository) {
    QStringList domains;
    for (const plist::Dictionary& manifest : repository.standardizedManifests())
        domains << manifest.string(QStringLiteral("pfm_domain")).value_or(QStringLiteral("<none>"));
    return domains;
}

QStringList relativeTo(const QString& folder, const QStringList& paths) {
    QStringList relative;
    for (const QString& path : paths)
        relative << QDir(folder).relativeFilePath(path);
    return relative;
}

plist::Dictionary titled(const QString& domain, const QString& title) {
    return test::manifestTree(domain, {}, {{QStringLiteral("pfm_title"), title}});
}

class ManifestRepositoryTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_folder.isValid());
        ASSERT_TRUE(test::copyFolder(test::supplyDataPath("repository"), path()));
    }
    QString path(const QString& relative = {}) const {
        return relative.isEmpty() ? m_folder.filePath("repository")
                                  : m_folder.filePath("repository/" + relative);
    }

    QTemporaryDir m_folder;
};

} // namespace

TEST_F(ManifestRepositoryTest, ListsPlistFilesInSubfoldersAndSkipsHiddenAndOtherExtensions) {
    EXPECT_EQ(
        relativeTo(path(), ManifestRepository::plistFiles(path())),
        (QStringList{"Apps/Mail/com.example.mail.plist", "Apps/com.example.browser.plist", "General.plist",
                     "array-root.plist", "domainless.plist", "garbage.plist", "untitled.plist"}));

    // A link back up the tree is not followed, so the listing ends.
    ASSERT_TRUE(QFile::link(path(), path("Apps/loop")));
    EXPECT_EQ(ManifestRepository::plistFiles(path()).size(), 7);

    EXPECT_TRUE(ManifestRepository::plistFiles(m_folder.filePath("nowhere")).isEmpty());
    EXPECT_TRUE(ManifestRepository::plistFiles(QString()).isEmpty());
}

TEST_F(ManifestRepositoryTest, ReadsOnlyDictionaryRootsAndSkipsWhatCannotBeRead) {
    const QStringList files{path("garbage.plist"),    path("General.plist"), path("missing.plist"),
                            path("array-root.plist"), path("General.plist"), path("Apps")};
    const auto read = ManifestRepository::readManifests(files);
    ASSERT_EQ(read.size(), 1);
    EXPECT_EQ(read.first().first, path("General.plist"));
    EXPECT_EQ(read.first().second.string("pfm_title"), QStringLiteral("Profile Basics"));
}

TEST_F(ManifestRepositoryTest, ReloadingReadsEveryManifestBelowTheDirectoryInListingOrder) {
    ManifestRepository repository(path());
    EXPECT_TRUE(repository.standardizedManifests().isEmpty()) << "the base reads nothing until reloaded";
    repository.reloadManifests();
    // A manifest without a domain is still a manifest of the repository.
    EXPECT_EQ(domainsOf(repository),
              (QStringList{"com.example.mail", "com.example.browser", "", "<none>", "com.example.untitled"}));

    QFile::remove(path("Apps/com.example.browser.plist"));
    repository.reloadManifests();
    EXPECT_EQ(domainsOf(repository), (QStringList{"com.example.mail", "", "<none>", "com.example.untitled"}));

    ManifestRepository empty(m_folder.filePath("empty"));
    QDir().mkpath(empty.standardizedManifestsDirectory());
    empty.reloadManifests();
    EXPECT_TRUE(empty.standardizedManifests().isEmpty());
}

TEST_F(ManifestRepositoryTest, FindsTheFirstManifestOfADomainTheEmptyOneIncluded) {
    BundledManifestRepository repository(path());
    EXPECT_EQ(repository.manifest("")->string("pfm_title"), QStringLiteral("Profile Basics"));
    EXPECT_EQ(repository.manifest("com.example.mail")->string("pfm_title"), QStringLiteral("Mail Account"));
    EXPECT_FALSE(repository.manifest("com.example.hidden"));
    EXPECT_FALSE(repository.manifest("com.example.shouting"));
    // The manifest without a domain is found under no name.
    EXPECT_FALSE(repository.manifest("<none>"));

    // Two manifests of one domain: the earlier in the array answers.
    ASSERT_TRUE(test::writeManifest(path("zz-second-mail.plist"), titled("com.example.mail", "Second Mail")));
    repository.reloadManifests();
    EXPECT_EQ(repository.manifest("com.example.mail")->string("pfm_title"), QStringLiteral("Mail Account"));
}

TEST_F(ManifestRepositoryTest, AnIncrementalReloadReplacesTheDomainsOfTheFilesItReads) {
    BundledManifestRepository repository(path());
    ASSERT_EQ(repository.standardizedManifests().size(), 5);

    // A changed domain leaves its place and goes to the end; a new one is added.
    const QString changed = path("Apps/com.example.browser.plist");
    const QString added = path("chat.plist");
    ASSERT_TRUE(test::writeManifest(changed, titled("com.example.browser", "Browser, revised")));
    ASSERT_TRUE(test::writeManifest(added, titled("com.example.chat", "Chat")));
    repository.reloadManifests({changed, added});
    EXPECT_EQ(domainsOf(repository), (QStringList{"com.example.mail", "", "<none>", "com.example.untitled",
                                                  "com.example.browser", "com.example.chat"}));
    EXPECT_EQ(repository.manifest("com.example.browser")->string("pfm_title"),
              QStringLiteral("Browser, revised"));

    // Removal is driven by what was read: a vanished file leaves its manifest,
    // and the manifest without a domain survives any reload.
    const QString mail = path("Apps/Mail/com.example.mail.plist");
    QFile::remove(mail);
    repository.reloadManifests({mail, path("garbage.plist")});
    EXPECT_EQ(repository.standardizedManifests().size(), 6);
    EXPECT_TRUE(repository.manifest("com.example.mail"));

    // One file read for a domain held twice removes both copies.
    ASSERT_TRUE(test::writeManifest(path("copy.plist"), titled("com.example.chat", "Chat copy")));
    repository.reloadManifests();
    ASSERT_EQ(domainsOf(repository).count("com.example.chat"), 2);
    repository.reloadManifests({added});
    EXPECT_EQ(domainsOf(repository).count("com.example.chat"), 1);
    EXPECT_EQ(domainsOf(repository).last(), QStringLiteral("com.example.chat"));
    EXPECT_EQ(repository.manifest("com.example.chat")->string("pfm_title"), QStringLiteral("Chat"));
}
