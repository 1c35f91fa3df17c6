#include "StandardizationFixtures.h"

#include "plist/ApplicationIdentity.h"
#include "plist/DefaultsKey.h"
#include "plist/UserDefaults.h"
#include "shell/IsolatedHome.h"
#include "supply/FolderBookmark.h"
#include "supply/GitHubManifestRepository.h"
#include "supply/LocalManifestRepository.h"
#include "supply/PFMDomainManager.h"
#include "supply/RepositoryStorePaths.h"
#include "support/LocalHttpServer.h"

#include <QTest>

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>
#include <ostream>
#include <unistd.h>

namespace quorlin {
void PrintTo(const DomainManagerError& error, std::ostream* out) {
    *out << (error.kind == DomainManagerError::Kind::localManifestRepositoryDirectoryNoLongerAvailable
                 ? "local"
                 : "override")
         << " folder unavailable, path " << (error.path ? error.path->toStdString() : std::string("absent"));
}
} // namespace quorlin

using namespace quorlin;
namespace Key = quorlin::DefaultsKey;
using Error = PFMDomainManager::Errors;

namespace {

const QString kAddress = QStringLiteral("https://github.com/ProfileManifests/ProfileManifests");

QStringList domainStrings(const PFMDomainManager& manager) {
    QStringList strings;
    for (const auto& domain : manager.domains())
        strings << domain->domainString();
    return strings;
}

QList<Error> localErrors(std::optional<QString> path) {
    return {Error{Error::Kind::localManifestRepositoryDirectoryNoLongerAvailable, std::move(path)}};
}

QList<Error> overrideErrors(std::optional<QString> path) {
    return {Error{Error::Kind::overrideManifestRepositoryDirectoryNoLongerAvailable, std::move(path)}};
}

std::shared_ptr<const PFMDomain> domainNamed(const PFMDomainManager& manager, const QString& domainString) {
    for (const auto& domain : manager.domains()) {
        if (domain->domainString() == domainString)
            return domain;
    }
    return nullptr;
}

// Stores and settings of the test's own: the home folder (and with it the
// store roots) is a fresh one, the resources hold the repository fixture,
// and the user folder is a copy that a test may change.
class PFMDomainManagerTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_home.isValid() && m_folder.isValid());
        ASSERT_TRUE(test::copyFolder(test::supplyDataPath("repository"), m_resources.manifestsDirectory()));
        ASSERT_TRUE(QDir().mkpath(m_resources.manifestSupportDirectory()));
        ASSERT_TRUE(test::writeBytes(m_resources.imagePath("domainIconDefault"), test::pngBytes(Qt::gray)));
        ASSERT_TRUE(test::copyFolder(test::supplyDataPath("user-folder"), userFolder()));
    }

    void TearDown() override {
        // Or the temporary folder couldn't be removed.
        QFile::setPermissions(m_folder.filePath("locked"),
                              QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    }

    std::unique_ptr<PFMDomainManager> makeManager() {
        return std::make_unique<PFMDomainManager>(m_defaults, m_resources);
    }
    LoadedRepositories load() const {
        return PFMDomainManager::loadRepositoriesFromSettings(m_defaults, StandardizationSettings{});
    }

    QString userFolder() const { return m_folder.filePath("User Manifests"); }
    void setOnline(const QString& address = kAddress) {
        m_defaults.set(Key::manifestRepositoryType, "online");
        m_defaults.set(Key::onlineManifestRepositoryAddress, address);
    }
    void setUserFolder(const QByteArray& bookmark) {
        m_defaults.set(Key::userManifestFolderBookmark, bookmark);
    }
    void setLocal(const QByteArray& bookmark) {
        m_defaults.set(Key::manifestRepositoryType, "local");
        m_defaults.set(Key::localRepositoryPathBookmark, bookmark);
    }
    // A folder that exists but that this user can't list; empty when
    // permissions don't bind this user.
    QString lockedFolder() {
        const QString locked = m_folder.filePath("locked");
        QDir().mkpath(locked);
        QFile::setPermissions(locked, QFileDevice::WriteOwner);
        return geteuid() == 0 ? QString() : locked;
    }

    test::IsolatedHome m_home;
    QTemporaryDir m_folder;
    ResourceFolder m_resources{m_folder.filePath("resources")};
    UserDefaults m_defaults{m_folder.filePath("defaults.plist")};
};

} // namespace

TEST_F(PFMDomainManagerTest, WithoutARepositorySettingTheBundledManifestsServe) {
    for (const QString& type : {QString(), QStringLiteral("quorlin_standard"), QStringLiteral("Online")}) {
        if (!type.isEmpty())
            m_defaults.set(Key::manifestRepositoryType, type);
        setUserFolder(FolderBookmark::data(userFolder()));
        const auto manager = makeManager();
        EXPECT_EQ(&manager->mainManifestRepository(), &manager->bundledManifestRepository());
        EXPECT_EQ(domainStrings(*manager), (QStringList{"com.example.mail", "com.example.browser", ""}));
        EXPECT_EQ(manager->overrideManifestRepository(), nullptr)
            << "the user folder needs an online repository";
        EXPECT_TRUE(manager->repositoryErrors().isEmpty());
        EXPECT_FALSE(manager->areUpdatesAvailable());
        ASSERT_TRUE(manager->configurationDomain());
        EXPECT_EQ(manager->configurationDomain()->title(), QStringLiteral("Profile Basics"));
    }
}

TEST_F(PFMDomainManagerTest, AnOnlineSettingNamesTheStoreOfItsAddressAndBranch) {
    setOnline();
    auto loaded = load();
    ASSERT_TRUE(loaded.online);
    // No branch means "master".
    EXPECT_EQ(*loaded.online, (LoadedRepositories::Online{kAddress, "master",
                                                          *RepositoryStorePaths::gitHubStorageRoot() +
                                                              "/ProfileManifests/ProfileManifests/master"}));
    EXPECT_TRUE(dynamic_cast<GitHubManifestRepository*>(loaded.mainRepository.get()));
    EXPECT_TRUE(loaded.errors.isEmpty());

    m_defaults.set(Key::onlineManifestRepositoryBranchName, "release/2.0");
    loaded = load();
    ASSERT_TRUE(loaded.online);
    EXPECT_TRUE(loaded.online->storageDirectory.endsWith("/ProfileManifests/ProfileManifests/release/2.0"));

    // A branch that breaks the naming rules gives no store, but the user folder still counts.
    m_defaults.set(Key::onlineManifestRepositoryBranchName, "../../outside");
    setUserFolder(FolderBookmark::data(userFolder()));
    loaded = load();
    EXPECT_FALSE(loaded.online);
    EXPECT_NE(loaded.overrideRepository, nullptr);
}

TEST_F(PFMDomainManagerTest, AnOnlineAddressOfAnotherShapeOrHostBuildsNothing) {
    setUserFolder(FolderBookmark::data(userFolder()));
    for (const char* address :
         {"https://github.com/ProfileManifests/ProfileManifests/tree", "https://gitlab.com/owner/repository",
          "https://github.com/owner", "not an address", ""}) {
        setOnline(address);
        const auto loaded = load();
        EXPECT_FALSE(loaded.online) << address;
        EXPECT_EQ(loaded.overrideRepository, nullptr) << address;
        EXPECT_TRUE(loaded.errors.isEmpty()) << address;
    }
    // An address that isn't text counts as none.
    m_defaults.set(Key::onlineManifestRepositoryAddress, 42);
    EXPECT_FALSE(load().online);

    const auto manager = makeManager();
    EXPECT_EQ(&manager->mainManifestRepository(), &manager->bundledManifestRepository());
    EXPECT_TRUE(manager->repositoryErrors().isEmpty());
}

TEST_F(PFMDomainManagerTest, TheUserFolderReplacesDomainsWholeAndTheLaterOfTwoWins) {
    setOnline();
    setUserFolder(FolderBookmark::data(userFolder()));
    const auto manager = makeManager();

    // The user folder's domains go to the end, in its order: the general
    // domain first, from its subfolder, then the two browsers, then chat.
    EXPECT_EQ(domainStrings(*manager),
              (QStringList{"com.example.mail", "", "com.example.browser", "com.example.chat"}));
    EXPECT_EQ(domainNamed(*manager, "com.example.browser")->title(),
              QStringLiteral("Browser (second override)"));
    EXPECT_EQ(domainNamed(*manager, "com.example.browser")->keyPrototypes().size(), 2);
    EXPECT_EQ(manager->configurationDomain()->title(), QStringLiteral("Profile Basics (house rules)"));
    EXPECT_EQ(manager->accessedSecurityBookmarks(), QStringList{userFolder()});
    EXPECT_TRUE(manager->repositoryErrors().isEmpty());
    // The main repository is untouched by the override.
    EXPECT_TRUE(manager->mainManifestRepository().manifest("com.example.browser"));
}

TEST_F(PFMDomainManagerTest, UserFolderBookmarksThatFailAreOverrideErrors) {
    setOnline();
    setUserFolder(QByteArray());
    auto loaded = load();
    EXPECT_EQ(loaded.errors, overrideErrors(std::nullopt));
    EXPECT_TRUE(loaded.online) << "the online repository stays in force";

    // A folder that is simply gone is no error.
    setUserFolder(FolderBookmark::data(m_folder.filePath("gone")));
    loaded = load();
    EXPECT_TRUE(loaded.errors.isEmpty());
    EXPECT_EQ(loaded.overrideRepository, nullptr);
    EXPECT_TRUE(loaded.bookmarks.isEmpty());
}

TEST_F(PFMDomainManagerTest, AFolderThatCannotBeReadIsAnErrorWithItsPath) {
    const QString locked = lockedFolder();
    if (locked.isEmpty())
        GTEST_SKIP() << "permissions don't bind the superuser";
    setOnline();
    setUserFolder(FolderBookmark::data(locked));
    EXPECT_EQ(load().errors, overrideErrors(locked));
    setLocal(FolderBookmark::data(locked));
    EXPECT_EQ(load().errors, localErrors(locked));
}

TEST_F(PFMDomainManagerTest, ALocalSettingReadsItsFolderBookmark) {
    // No bookmark, or one of the wrong type: the bundled manifests, and no error.
    m_defaults.set(Key::manifestRepositoryType, "local");
    EXPECT_TRUE(load().errors.isEmpty());
    m_defaults.set(Key::localRepositoryPathBookmark, userFolder());
    EXPECT_TRUE(load().errors.isEmpty());

    setLocal(QByteArray("relative/folder"));
    EXPECT_EQ(load().errors, localErrors(std::nullopt));

    // A folder that is gone, or a file in its place, is no error.
    ASSERT_TRUE(test::writeBytes(m_folder.filePath("file"), "x"));
    for (const char* gone : {"gone", "file"}) {
        setLocal(FolderBookmark::data(m_folder.filePath(gone)));
        const auto loaded = load();
        EXPECT_TRUE(loaded.errors.isEmpty()) << gone;
        EXPECT_FALSE(loaded.local) << gone;
    }

    setLocal(FolderBookmark::data(userFolder()));
    const auto loaded = load();
    EXPECT_TRUE(loaded.errors.isEmpty());
    EXPECT_EQ(loaded.local,
              (LoadedRepositories::LocalFolder{
                  userFolder(), *PFMDomainManager::storageDirectoryForLocalFolder(userFolder())}));
    const auto* repository = dynamic_cast<LocalManifestRepository*>(loaded.mainRepository.get());
    ASSERT_TRUE(repository);
    EXPECT_EQ(repository->originalManifestsDirectory(), userFolder());
    EXPECT_EQ(loaded.bookmarks, QStringList{userFolder()});
    EXPECT_FALSE(loaded.online);
}

TEST_F(PFMDomainManagerTest, TheUserFolderIsNeverOpenedBesideALocalRepository) {
    setLocal(FolderBookmark::data(m_folder.filePath("gone")));
    // Opened, this bookmark would give an error.
    setUserFolder(QByteArray("not a path"));
    const auto manager = makeManager();
    EXPECT_TRUE(manager->repositoryErrors().isEmpty());
    EXPECT_EQ(manager->overrideManifestRepository(), nullptr);
    EXPECT_EQ(domainStrings(*manager), (QStringList{"com.example.mail", "com.example.browser", ""}));
}

TEST_F(PFMDomainManagerTest, ReloadingRepositoriesReadsTheSettingsAndTheFolderAgain) {
    const auto manager = makeManager();
    int domainChanges = 0;
    QObject::connect(manager.get(), &PFMDomainManager::domainsChanged, [&] { ++domainChanges; });
    const auto mailBefore = domainNamed(*manager, "com.example.mail");

    // Reloading the domains alone doesn't look at the settings, but makes new domains.
    setOnline();
    setUserFolder(FolderBookmark::data(userFolder()));
    manager->reloadDomains();
    EXPECT_EQ(domainStrings(*manager), (QStringList{"com.example.mail", "com.example.browser", ""}));
    EXPECT_EQ(domainChanges, 1);
    EXPECT_NE(domainNamed(*manager, "com.example.mail"), mailBefore);

    manager->reloadRepositories();
    EXPECT_EQ(domainChanges, 2);
    EXPECT_EQ(domainStrings(*manager),
              (QStringList{"com.example.mail", "", "com.example.browser", "com.example.chat"}));

    // A manifest added to the user folder arrives with the repositories, not with the domains.
    ASSERT_TRUE(test::writeManifest(QDir(userFolder()).filePath("mail.plist"),
                                    test::manifestTree("com.example.mail", {}, {{"pfm_title", "My Mail"}})));
    manager->reloadDomains();
    EXPECT_EQ(domainStrings(*manager).first(), QStringLiteral("com.example.mail"));
    manager->reloadRepositories();
    EXPECT_EQ(domainStrings(*manager),
              (QStringList{"", "com.example.browser", "com.example.chat", "com.example.mail"}));
    EXPECT_EQ(domainNamed(*manager, "com.example.mail")->title(), QStringLiteral("My Mail"));

    // The errors are those of the last reading.
    setUserFolder(QByteArray());
    manager->reloadRepositories();
    EXPECT_EQ(manager->repositoryErrors().size(), 1);
    EXPECT_EQ(domainStrings(*manager), (QStringList{"com.example.mail", "com.example.browser", ""}));
    EXPECT_TRUE(manager->accessedSecurityBookmarks().isEmpty());
    setUserFolder(FolderBookmark::data(userFolder()));
    manager->reloadRepositories();
    EXPECT_TRUE(manager->repositoryErrors().isEmpty());
}

TEST_F(PFMDomainManagerTest, IconsComeFromTheDomainThenTheBundledManifestThenTheDefaultImage) {
    const auto iconic = [](const QString& domain, const QByteArray& icon, bool isTemplate) {
        return test::manifestTree(domain, {},
                                  {{"pfm_quorlin_icon", icon}, {"pfm_quorlin_icon_is_template", isTemplate}});
    };
    ASSERT_TRUE(test::writeManifest(m_resources.manifestsDirectory() + "/iconic.plist",
                                    iconic("com.example.iconic", test::pngBytes(Qt::red), true)));
    ASSERT_TRUE(test::writeManifest(userFolder() + "/iconic.plist",
                                    iconic("com.example.iconic", QByteArray("no image"), false)));
    ASSERT_TRUE(test::writeManifest(userFolder() + "/own.plist",
                                    iconic("com.example.own", test::pngBytes(Qt::blue), false)));
    setOnline();
    setUserFolder(FolderBookmark::data(userFolder()));
    const auto manager = makeManager();

    const DomainIcon own = manager->icon(*domainNamed(*manager, "com.example.own"));
    EXPECT_EQ(test::firstPixel(own.image), QColor(Qt::blue));
    EXPECT_FALSE(own.isTemplate);
    // The override's icon doesn't decode: the bundled manifest of that domain lends its own.
    const DomainIcon lent = manager->icon(*domainNamed(*manager, "com.example.iconic"));
    EXPECT_EQ(test::firstPixel(lent.image), QColor(Qt::red));
    EXPECT_TRUE(lent.isTemplate);
    const DomainIcon fallback = manager->icon(*domainNamed(*manager, "com.example.chat"));
    EXPECT_EQ(test::firstPixel(fallback.image), QColor(Qt::gray));
}

TEST_F(PFMDomainManagerTest, StartingRemovesTheStoresThatNoRepositoryUses) {
    const auto gitHub = RepositoryStorePaths::gitHubStorageRoot();
    const auto local = RepositoryStorePaths::localStorageRoot();
    ASSERT_TRUE(gitHub && local);
    const QString onlineStore = *PFMDomainManager::storageDirectoryForRepositoryAddress(kAddress, "master");
    const QString localStore = *PFMDomainManager::storageDirectoryForLocalFolder(userFolder());
    const QString beside = RepositoryStorePaths::storeRoot() + "/notes.txt";
    for (const QString& file : {onlineStore + "/index.plist", localStore + "/index.plist", beside})
        ASSERT_TRUE(test::writeBytes(file, "x"));

    // The settings name the online store, whose repository waits in line
    // while it has no manifests; nothing names the local one.
    setOnline();
    const auto manager = makeManager();
    ASSERT_TRUE(manager->linedUpManifestRepository());
    EXPECT_EQ(manager->linedUpManifestRepository()->rootDirectory(), onlineStore);
    EXPECT_TRUE(QFile::exists(onlineStore + "/index.plist"));
    EXPECT_TRUE(QDir(*local).isEmpty());
    EXPECT_TRUE(QFile::exists(beside)) << "only the children of the two roots are judged";
    EXPECT_TRUE(QDir(userFolder()).exists());
}

TEST_F(PFMDomainManagerTest, TheDefaultStandardizationSettings) {
    const auto manager = makeManager();
    StandardizationSettings settings = manager->defaultStandardizationSettings();
    EXPECT_TRUE(settings.hidePayloadTopLevelKeys);
    EXPECT_TRUE(settings.scrubThirdPartyPlaceholders);
    EXPECT_FALSE(settings.iconSearchDirectories);
    EXPECT_FALSE(settings.supportSearchDirectory) << "the compatibility setting is off unless set";
    EXPECT_EQ(settings.supportVersion, ApplicationIdentity::shortVersionString());

    // The general payload sorts first, and no domain may hold two places.
    ASSERT_FALSE(settings.sortOrder.isEmpty());
    EXPECT_EQ(settings.sortOrder.first(), QString());
    EXPECT_EQ(QSet<QString>(settings.sortOrder.begin(), settings.sortOrder.end()).size(),
              settings.sortOrder.size());

    // The compatibility setting brings in the support folder, and so makes the settings differ.
    m_defaults.set(Key::maximizeNonStandardManifestCompatibility, true);
    const StandardizationSettings compatible = manager->defaultStandardizationSettings();
    EXPECT_EQ(compatible.supportSearchDirectory, m_resources.manifestSupportDirectory());
    EXPECT_NE(compatible, settings);
}

TEST_F(PFMDomainManagerTest, ANewOnlineRepositoryWaitsInLineUntilItsFirstDownloadThenOffersIt) {
    QTemporaryDir served;
    const QString raw = served.filePath("owner/repo/master/");
    plist::Dictionary entries;
    for (const QString& domain : {QStringLiteral("com.example.online"), QStringLiteral("com.example.mail")}) {
        const QString path = "Manifests/ManifestsApple/" + domain + ".plist";
        ASSERT_TRUE(test::writeManifest(raw + path,
                                        test::manifestTree(domain, {}, {{"pfm_title", "Online " + domain}})));
        entries.insert(domain, plist::Dictionary{{"path", path}, {"modified", plist::Date{1000.0}}});
    }
    ASSERT_TRUE(test::writeManifest(raw + "Manifests/index", plist::Dictionary{{"ManifestsApple", entries}}));
    test::LocalHttpServer server(served.path());
    ASSERT_TRUE(server.listen());
    qputenv("QUORLIN_RAW_CONTENT_URL", server.baseUrl().toString().toUtf8());
    setOnline("https://github.com/owner/repo");

    const auto manager = makeManager();
    EXPECT_EQ(&manager->mainManifestRepository(), &manager->bundledManifestRepository());
    auto* linedUp = dynamic_cast<GitHubManifestRepository*>(manager->linedUpManifestRepository());
    ASSERT_TRUE(linedUp);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !linedUp->status().isCheckingForUpdates(); }, 20000));
    EXPECT_EQ(linedUp->standardizedManifests().size(), 2);
    // An online check runs at every start; its results are offered once the settings were touched.
    EXPECT_FALSE(manager->areUpdatesAvailable());
    manager->setWindowsShouldIndicateOnlineUpdates(true);
    EXPECT_TRUE(manager->areUpdatesAvailable());

    manager->reloadRepositories();
    qputenv("QUORLIN_RAW_CONTENT_URL", "http://127.0.0.1:9/");
    EXPECT_TRUE(dynamic_cast<const GitHubManifestRepository*>(&manager->mainManifestRepository()));
    EXPECT_EQ(manager->linedUpManifestRepository(), nullptr);
    ASSERT_TRUE(domainNamed(*manager, "com.example.online"));
    EXPECT_EQ(domainNamed(*manager, "com.example.mail")->title(), "Online com.example.mail");
    EXPECT_FALSE(manager->areUpdatesAvailable()) << "the reload took the results in";
}

TEST_F(PFMDomainManagerTest, ALocalRepositoryOffersItsChangesAtOnceAndCanBeLinedUp) {
    setLocal(FolderBookmark::data(userFolder()));
    const auto manager = makeManager();
    auto* local = dynamic_cast<const LocalManifestRepository*>(&manager->mainManifestRepository());
    ASSERT_TRUE(local);
    EXPECT_FALSE(manager->areUpdatesAvailable());
    ASSERT_TRUE(test::writeManifest(QDir(userFolder()).filePath("new.plist"),
                                    test::manifestTree("com.example.new", {}, {{"pfm_title", "New"}})));
    EXPECT_TRUE(QTest::qWaitFor([&] { return manager->areUpdatesAvailable(); }, 2000));
    EXPECT_FALSE(domainNamed(*manager, "com.example.new"))
        << "open documents keep their domains until a reload";

    // The user points the setting at another folder and chooses not to reload.
    QTemporaryDir other;
    ASSERT_TRUE(
        test::writeManifest(other.filePath("other.plist"), test::manifestTree("com.example.other", {}, {})));
    setLocal(FolderBookmark::data(other.path()));
    manager->lineUpRepositoryFromSettings();
    ASSERT_TRUE(manager->linedUpManifestRepository());
    EXPECT_EQ(manager->linedUpManifestRepository()->originalManifestsDirectory(), other.path());
    EXPECT_EQ(&manager->mainManifestRepository(), local);
    manager->reloadRepositories();
    EXPECT_TRUE(domainNamed(*manager, "com.example.other"));
}
