#include "ShellFixtures.h"

#include "shell/FactoryDefaults.h"
#include "shell/VersionMigrations.h"
#include "supply/RepositoryStorePaths.h"

using namespace quorlin;
using test::createFile;
namespace Key = quorlin::DefaultsKey;

namespace {

const QString kCurrent = QStringLiteral("2.0.0");
const QString kAddress = QStringLiteral("https://github.com/ProfileManifests/ProfileManifests");

class VersionMigrationsTest : public test::ShellTest {
protected:
    void SetUp() override {
        ShellTest::SetUp();
        ASSERT_TRUE(RepositoryStorePaths::storeRoot().startsWith(m_home.path()));
        m_defaults.registerDefaults(FactoryDefaults::registeredDefaults());
    }

    // Defaults as an earlier version left them.
    void store(const plist::Dictionary& values) {
        for (auto it = values.begin(); it != values.end(); ++it)
            m_defaults.set(it.key(), it.value());
    }

    QString indexOfStore(const QString& address, const QString& branch) const {
        const auto directory = RepositoryStorePaths::storageDirectoryForRepositoryAddress(address, branch);
        return directory ? QDir(*directory).filePath(QStringLiteral("standardized-index.plist")) : QString();
    }
};

} // namespace

TEST_F(VersionMigrationsTest, AFirstStartRecordsTheVersionAndMigratesNothing) {
    const plist::Dictionary legacy{{Key::preferencesDefaultsOmitDefaultProperties, false},
                                   {Key::lastUsedSigningIdentityCommonName, "Jane Appleseed"},
                                   {Key::lastChoiceShowPropertyDocumentationButtons, true}};
    store(legacy);

    VersionMigrations::run(m_defaults, kCurrent);

    plist::Dictionary expected = legacy;
    expected.insert(Key::lastLaunchedBundleShortVersionString, kCurrent);
    EXPECT_EQ(m_defaults.persistentDomain(), expected);
}

TEST_F(VersionMigrationsTest, TheLegacyVersionKeyCountsAsVersion133AndRunsEveryMigration) {
    store({{Key::lastLaunchedBundleVersionString, "112"},
           {Key::preferencesDefaultsOmitDefaultProperties, false},
           {Key::lastUsedSigningIdentityCommonName, "Jane Appleseed"},
           {Key::lastChoiceShowPropertyDocumentationButtons, true}});

    VersionMigrations::run(m_defaults, kCurrent);

    const plist::Dictionary expected{{Key::preferencesDefaultsUnsetDefaultBooleans, false},
                                     {Key::preferencesDefaultsSigningIdentity, "Jane Appleseed"},
                                     {Key::lastChoiceShowPropertyDocumentationButtons, false},
                                     {Key::lastLaunchedBundleShortVersionString, kCurrent}};
    EXPECT_EQ(m_defaults.persistentDomain(), expected);
}

TEST_F(VersionMigrationsTest, EachMigrationRunsOnlyForVersionsOlderThanItsOwn) {
    struct Case {
        const char* lastVersion;
        bool omitDefaultsMigrated;
        bool signingIdentityMigrated;
        bool documentationButtonsHidden;
    };
    for (const Case& c :
         {Case{"1.3.9", true, true, true}, Case{"1.4", false, true, true}, Case{"1.4.10", false, true, true},
          Case{"1.5.0", false, false, true}, Case{"1.7.99", false, false, true},
          Case{"1.8", false, false, false}, Case{"1.10", false, false, false}}) {
        SCOPED_TRACE(c.lastVersion);
        m_defaults.removePersistentDomain();
        store({{Key::lastLaunchedBundleShortVersionString, c.lastVersion},
               {Key::preferencesDefaultsOmitDefaultProperties, true},
               {Key::lastUsedSigningIdentityCommonName, "Signer"}});

        VersionMigrations::run(m_defaults, kCurrent);

        EXPECT_EQ(m_defaults.hasPersistentValue(Key::preferencesDefaultsOmitDefaultProperties),
                  !c.omitDefaultsMigrated);
        EXPECT_EQ(m_defaults.hasPersistentValue(Key::preferencesDefaultsUnsetDefaultBooleans),
                  c.omitDefaultsMigrated);
        EXPECT_EQ(m_defaults.hasPersistentValue(Key::lastUsedSigningIdentityCommonName),
                  !c.signingIdentityMigrated);
        EXPECT_EQ(m_defaults.string(Key::preferencesDefaultsSigningIdentity),
                  c.signingIdentityMigrated ? std::optional<QString>("Signer") : std::nullopt);
        EXPECT_EQ(m_defaults.hasPersistentValue(Key::lastChoiceShowPropertyDocumentationButtons),
                  c.documentationButtonsHidden);
        EXPECT_EQ(m_defaults.string(Key::lastLaunchedBundleShortVersionString), kCurrent);
    }
}

TEST_F(VersionMigrationsTest, ADowngradeOrTheSameVersionChangesNothing) {
    for (const char* lastVersion : {"3.0", "2.0.1", "2.0", "2.0.0"}) {
        SCOPED_TRACE(lastVersion);
        m_defaults.removePersistentDomain();
        const plist::Dictionary before{{Key::lastLaunchedBundleShortVersionString, lastVersion},
                                       {Key::lastUsedSigningIdentityCommonName, "Signer"}};
        store(before);
        VersionMigrations::run(m_defaults, kCurrent);
        EXPECT_EQ(m_defaults.persistentDomain(), before);
    }
}

TEST_F(VersionMigrationsTest, ValuesOfTheWrongClassCountAsAbsent) {
    // A version that is no string: a first start.
    store(
        {{Key::lastLaunchedBundleShortVersionString, 1}, {Key::lastUsedSigningIdentityCommonName, "Signer"}});
    VersionMigrations::run(m_defaults, kCurrent);
    EXPECT_EQ(m_defaults.string(Key::lastLaunchedBundleShortVersionString), kCurrent);
    EXPECT_TRUE(m_defaults.hasPersistentValue(Key::lastUsedSigningIdentityCommonName));

    // Old settings that are not of their class are left alone.
    m_defaults.removePersistentDomain();
    store({{Key::lastLaunchedBundleShortVersionString, "1.0"},
           {Key::preferencesDefaultsOmitDefaultProperties, "YES"},
           {Key::lastUsedSigningIdentityCommonName, 3}});
    VersionMigrations::run(m_defaults, kCurrent);
    EXPECT_EQ(m_defaults.string(Key::preferencesDefaultsOmitDefaultProperties), QStringLiteral("YES"));
    EXPECT_FALSE(m_defaults.hasPersistentValue(Key::preferencesDefaultsUnsetDefaultBooleans));
    EXPECT_FALSE(m_defaults.hasPersistentValue(Key::preferencesDefaultsSigningIdentity));
}

TEST_F(VersionMigrationsTest, WithoutACurrentVersionNothingHappens) {
    store({{Key::lastLaunchedBundleVersionString, "1"}});
    VersionMigrations::run(m_defaults, QString());
    EXPECT_EQ(m_defaults.persistentDomain(),
              (plist::Dictionary{{Key::lastLaunchedBundleVersionString, "1"}}));
}

TEST_F(VersionMigrationsTest, Versions150And151LoseTheIndexOfTheirOnlineStore) {
    const QString index = indexOfStore(kAddress, "master");
    const QString sibling = QFileInfo(index).absolutePath() + QStringLiteral("/manifest.plist");
    ASSERT_FALSE(index.isEmpty());
    for (const auto& [lastVersion, removed] : {std::pair{"1.4.9", false},
                                               {"1.5.2", false},
                                               {"1.6", false},
                                               {"1.5", true},
                                               {"1.5.0", true},
                                               {"1.5.1.9", true}}) {
        SCOPED_TRACE(lastVersion);
        createFile(index);
        createFile(sibling);
        m_defaults.removePersistentDomain();
        store({{Key::lastLaunchedBundleShortVersionString, lastVersion}});
        VersionMigrations::run(m_defaults, kCurrent);
        EXPECT_EQ(QFile::exists(index), !removed);
        EXPECT_TRUE(QFile::exists(sibling)) << "only the index goes";
    }
}

TEST_F(VersionMigrationsTest, TheIndexMigrationFollowsTheConfiguredRepository) {
    const auto runFrom151 = [&](const plist::Dictionary& settings) {
        m_defaults.removePersistentDomain();
        store(settings);
        store({{Key::lastLaunchedBundleShortVersionString, "1.5.1"}});
        VersionMigrations::run(m_defaults, kCurrent);
    };
    const QString branchIndex = indexOfStore("https://www.github.com/owner/repo", "release/1.0");
    createFile(branchIndex);
    runFrom151({{Key::onlineManifestRepositoryAddress, "https://www.github.com/owner/repo"},
                {Key::onlineManifestRepositoryBranchName, "release/1.0"}});
    EXPECT_FALSE(QFile::exists(branchIndex));

    // A local repository, or an address of another shape, keeps every index.
    const QString masterIndex = indexOfStore(kAddress, "master");
    createFile(masterIndex);
    runFrom151({{Key::manifestRepositoryType, DefaultsValue::repositoryTypeLocal}});
    runFrom151({{Key::onlineManifestRepositoryAddress, kAddress + QStringLiteral("/tree")}});
    EXPECT_TRUE(QFile::exists(masterIndex));

    // With no branch set at all, the store of "master" is meant.
    UserDefaults bare(m_folder.filePath(QStringLiteral("bare.plist")));
    bare.set(Key::manifestRepositoryType, DefaultsValue::repositoryTypeOnline);
    bare.set(Key::onlineManifestRepositoryAddress, kAddress);
    bare.set(Key::lastLaunchedBundleShortVersionString, "1.5.0");
    VersionMigrations::run(bare, kCurrent);
    EXPECT_FALSE(QFile::exists(masterIndex));
}

TEST_F(VersionMigrationsTest, TheIndexMigrationNeverDeletesOutsideTheStore) {
    // An owner and repository of ".." pass the address rule but climb out.
    const QString outside = QDir(RepositoryStorePaths::applicationDataFolder())
                                .filePath(QStringLiteral("master/standardized-index.plist"));
    createFile(outside);
    store({{Key::onlineManifestRepositoryAddress, "https://github.com/../.."},
           {Key::lastLaunchedBundleShortVersionString, "1.5.1"}});
    ASSERT_TRUE(RepositoryStorePaths::addressIsValid("https://github.com/../.."));
    VersionMigrations::run(m_defaults, kCurrent);
    EXPECT_TRUE(QFile::exists(outside));

    const QString storeRoot = RepositoryStorePaths::storeRoot();
    const QString elsewhere = m_folder.filePath(QStringLiteral("standardized-index.plist"));
    createFile(elsewhere);
    EXPECT_FALSE(VersionMigrations::removeFileInsideStore(elsewhere));
    EXPECT_FALSE(VersionMigrations::removeFileInsideStore(
        storeRoot + QStringLiteral("/../master/standardized-index.plist")));
    EXPECT_TRUE(QFile::exists(elsewhere));
    EXPECT_TRUE(QFile::exists(outside));

    const QString inside = storeRoot + QStringLiteral("/github/o/r/master/standardized-index.plist");
    createFile(inside);
    EXPECT_TRUE(VersionMigrations::removeFileInsideStore(inside));
    EXPECT_FALSE(QFile::exists(inside));
    EXPECT_FALSE(VersionMigrations::removeFileInsideStore(inside)) << "a failed deletion is only reported";
}
