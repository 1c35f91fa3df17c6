#include "IsolatedHome.h"
#include "RecordingAnalyticsSink.h"

#include "plist/UserDefaults.h"
#include "shell/AnalyticsIntegration.h"
#include "shell/ApplicationStart.h"
#include "shell/FactoryDefaults.h"
#include "support/TestSupport.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>

using namespace quorlin;
namespace Key = quorlin::DefaultsKey;

namespace {

class ApplicationStartTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(m_home.isValid() && m_folder.isValid()); }

    test::IsolatedHome m_home;
    QTemporaryDir m_folder;
    UserDefaults m_defaults{m_folder.filePath(QStringLiteral("defaults.plist"))};
    std::shared_ptr<test::RecordingAnalyticsSink> m_sink = std::make_shared<test::RecordingAnalyticsSink>();
    AnalyticsIntegration m_analytics{m_sink};
};

} // namespace

TEST_F(ApplicationStartTest, RegistersTheFactoryDefaultsWithoutSavingThem) {
    ApplicationStart(m_defaults, m_analytics, "2.0.0").run();
    for (const auto& [key, value] : FactoryDefaults::table()) {
        EXPECT_EQ(m_defaults.registeredValue(key), value) << key.toStdString();
        EXPECT_FALSE(m_defaults.hasPersistentValue(key)) << key.toStdString();
    }
    EXPECT_EQ(m_defaults.persistentDomain().keys(), QStringList{Key::lastLaunchedBundleShortVersionString});
}

TEST_F(ApplicationStartTest, TheOldUpdaterSettingGoesOnlyOnAFirstStart) {
    m_defaults.set(Key::suEnableAutomaticChecks, true);
    ApplicationStart(m_defaults, m_analytics, "2.0.0").run();
    EXPECT_FALSE(m_defaults.hasPersistentValue(Key::suEnableAutomaticChecks));

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

TEST_F(ApplicationStartTest, TheUpdaterSettingIsCleanedBeforeTheVersionIsRecorded) {
    // Were the migrations first, the recorded version would hide the first start.
    m_defaults.set(Key::suEnableAutomaticChecks, true);
    ApplicationStart start(m_defaults, m_analytics, "2.0.0");
    start.run();
    EXPECT_FALSE(m_defaults.hasPersistentValue(Key::suEnableAutomaticChecks));
    EXPECT_EQ(m_defaults.string(Key::lastLaunchedBundleShortVersionString), QStringLiteral("2.0.0"));
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
