#include "ShellFixtures.h"

#include "shell/ApplicationStart.h"
#include "shell/FactoryDefaults.h"
#include "supply/RepositoryStorePaths.h"

using namespace quorlin;
namespace Key = quorlin::DefaultsKey;

using ApplicationStartTest = test::ShellTest;

TEST_F(ApplicationStartTest, RegistersTheFactoryDefaultsWithoutSavingThem) {
    ApplicationStart(m_defaults, m_analytics, "2.0.0").run();
    for (const auto& [key, value] : FactoryDefaults::table()) {
        EXPECT_EQ(m_defaults.registeredValue(key), value) << key.toStdString();
        EXPECT_FALSE(m_defaults.hasPersistentValue(key)) << key.toStdString();
    }
    EXPECT_EQ(m_defaults.persistentDomain().keys(), QStringList{Key::lastLaunchedBundleShortVersionString});
    // The default repository must pass the rules the store applies to any address.
    EXPECT_TRUE(RepositoryStorePaths::addressIsValid(FactoryDefaults::defaultOnlineRepositoryAddress()));
    EXPECT_TRUE(RepositoryStorePaths::branchIsValid(FactoryDefaults::defaultOnlineRepositoryBranch()));
}

// Were the migrations first, the recorded version would hide the first start.
TEST_F(ApplicationStartTest, TheOldUpdaterSettingGoesOnlyOnAFirstStartBeforeTheVersionIsRecorded) {
    m_defaults.set(Key::suEnableAutomaticChecks, true);
    ApplicationStart(m_defaults, m_analytics, "2.0.0").run();
    EXPECT_FALSE(m_defaults.hasPersistentValue(Key::suEnableAutomaticChecks));
    EXPECT_EQ(m_defaults.string(Key::lastLaunchedBundleShortVersionString), QStringLiteral("2.0.0"));

    // After a start of any version, old or current, it stays.
    for (const QString& versionKey :
         {Key::lastLaunchedBundleShortVersionString, Key::lastLaunchedBundleVersionString}) {
        m_defaults.removePersistentDomain();
        m_defaults.set(Key::suEnableAutomaticChecks, false);
        m_defaults.set(versionKey, "1.0");
        ApplicationStart::cleanOldUpdaterDefault(m_defaults);
        EXPECT_EQ(m_defaults.boolean(Key::suEnableAutomaticChecks), false) << versionKey.toStdString();
    }
}

TEST_F(ApplicationStartTest, StartsAnalyticsOnceWithTheApplicationSecret) {
    ApplicationStart start(m_defaults, m_analytics, "2.0.0");
    start.run();
    start.run();
    ApplicationStart(m_defaults, m_analytics, "2.0.0").run();
    ASSERT_EQ(m_sink->secrets.size(), 1);
    EXPECT_EQ(m_sink->secrets.first(), AnalyticsIntegration::applicationSecret());
    EXPECT_EQ(m_sink->secrets.first().size(), 36);
    EXPECT_TRUE(m_analytics.isStarted());
}

TEST_F(ApplicationStartTest, ARepeatedStartMigratesFromTheVersionOfTheLastStart) {
    m_defaults.set(Key::lastLaunchedBundleShortVersionString, "1.7");
    ApplicationStart(m_defaults, m_analytics, "1.9").run();
    EXPECT_EQ(m_defaults.boolean(Key::lastChoiceShowPropertyDocumentationButtons), false);
    EXPECT_TRUE(m_defaults.hasPersistentValue(Key::lastChoiceShowPropertyDocumentationButtons));

    // The user turns the buttons on; a later version must not turn them off again.
    m_defaults.set(Key::lastChoiceShowPropertyDocumentationButtons, true);
    ApplicationStart(m_defaults, m_analytics, "2.0.0").run();
    EXPECT_EQ(m_defaults.boolean(Key::lastChoiceShowPropertyDocumentationButtons), true);
    EXPECT_EQ(m_defaults.string(Key::lastLaunchedBundleShortVersionString), QStringLiteral("2.0.0"));
}
