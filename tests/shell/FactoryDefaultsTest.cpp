#include "ShellFixtures.h"

#include "shell/ApplicationStart.h"
#include "shell/FactoryDefaults.h"
#include "supply/RepositoryStorePaths.h"

using namespace quorlin;
namespace Key = quorlin::DefaultsKey;

TEST(FactoryDefaults, TheDistantPastIsTheFirstDayOfYearOne) {
    // 2000 Julian years of 365.25 days, less the 13 days by which the Julian
    // calendar trails the Gregorian one in 2001.
    EXPECT_EQ(FactoryDefaults::distantPast().secondsSinceReferenceDate, -(2000 * 365.25 - 13) * 86400);
    // Qt counts in the proleptic Gregorian calendar, which has no year 0.
    EXPECT_EQ(FactoryDefaults::distantPast().toDateTime().date(), QDate(-1, 12, 30));
}

class FactoryResetTest : public test::ShellTest {
protected:
    // Each start as a process of its own, with analytics not yet started.
    void start(const QString& version) {
        AnalyticsIntegration analytics(std::make_shared<test::RecordingAnalyticsSink>());
        ApplicationStart(m_defaults, analytics, version).run();
    }
};

TEST_F(FactoryResetTest, RemovesSettingsAndStoresSoTheNextStartIsAFirstStart) {
    start(QStringLiteral("1.7"));
    m_defaults.set(Key::identifierPrefix, "com.example");
    test::createFile(m_path); // stands for the saved settings whatever the writer did
    test::createFile(RepositoryStorePaths::storeRoot() + QStringLiteral("/github/o/r/master/index.plist"));

    FactoryDefaults::removeUserData(m_defaults);

    EXPECT_FALSE(QFile::exists(m_path));
    EXPECT_FALSE(QFileInfo::exists(RepositoryStorePaths::applicationDataFolder()));
    EXPECT_TRUE(m_defaults.persistentDomain().isEmpty());

    // A newer version now starts as on a fresh machine: no migration from 1.7.
    start(QStringLiteral("2.0.0"));
    EXPECT_EQ(m_defaults.persistentDomain(),
              (plist::Dictionary{{Key::lastLaunchedBundleShortVersionString, "2.0.0"}}));
    EXPECT_EQ(m_defaults.boolean(Key::lastChoiceShowPropertyDocumentationButtons), false);
}
