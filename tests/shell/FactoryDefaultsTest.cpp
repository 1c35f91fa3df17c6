#include "IsolatedHome.h"
#include "RecordingAnalyticsSink.h"

#include "plist/UserDefaults.h"
#include "shell/AnalyticsIntegration.h"
#include "shell/ApplicationStart.h"
#include "shell/FactoryDefaults.h"
#include "supply/RepositoryStorePaths.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>

using namespace quorlin;
namespace Key = quorlin::DefaultsKey;

namespace {

void createFile(const QString& path) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    file.write("x");
}

} // namespace

TEST(FactoryDefaults, RegistersFourteenValuesInTheirOrder) {
    const QList<FactoryDefaults::Entry> expected{
        {"preferencesDefaultsAutomaticallyUpdate", true},
        {"lastChoiceViewPropertyNames", false},
        {"lastChoiceShowSupervisionTags", true},
        {"lastChoiceShowRequirementTags", true},
        {"lastChoiceShowPlatformTags", true},
        {"lastChoiceShowPlatformTagsWhenDifferent", true},
        {"lastChoiceShowPropertyDocumentationButtons", false},
        {"preferencesDefaultsUnsetDefaultBooleans", true},
        {"manifestRepositoryType", "online"},
        {"onlineManifestRepositoryAddress", "https://github.com/ProfileManifests/ProfileManifests"},
        {"onlineManifestRepositoryBranchName", "master"},
        {"maximizeNonStandardManifestCompatibility", true},
        {"lastShownOnlineManifestsUpdateModificationDate", plist::Date{-63114076800.0}},
        {"lastChoiceShowingBooleanDescriptions", false},
        {"lastChoiceFormDensity", "comfortable"},
        {"lastChoiceShowIssues", false},
    };
    EXPECT_EQ(FactoryDefaults::table(), expected);
    EXPECT_EQ(FactoryDefaults::registeredDefaults().size(), 16);
    // The default repository must pass the rules the store applies to any address.
    EXPECT_TRUE(RepositoryStorePaths::addressIsValid(FactoryDefaults::defaultOnlineRepositoryAddress()));
    EXPECT_TRUE(RepositoryStorePaths::branchIsValid(FactoryDefaults::defaultOnlineRepositoryBranch()));
}

TEST(FactoryDefaults, TheDistantPastIsTheFirstDayOfYearOne) {
    // 2000 Julian years of 365.25 days, less the 13 days by which the Julian
    // calendar trails the Gregorian one in 2001.
    EXPECT_EQ(FactoryDefaults::distantPast().secondsSinceReferenceDate, -(2000 * 365.25 - 13) * 86400);
    // Qt counts in the proleptic Gregorian calendar, which has no year 0.
    EXPECT_EQ(FactoryDefaults::distantPast().toDateTime().date(), QDate(-1, 12, 30));
}

class FactoryResetTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_home.isValid());
        ASSERT_TRUE(m_folder.isValid());
    }
    void start(const QString& version) {
        AnalyticsIntegration analytics(std::make_shared<test::RecordingAnalyticsSink>());
        ApplicationStart(m_defaults, analytics, version).run();
    }

    test::IsolatedHome m_home;
    QTemporaryDir m_folder;
    QString m_path = m_folder.filePath(QStringLiteral("config/com.quorlin.ProfileEditor.plist"));
    UserDefaults m_defaults{m_path};
};

TEST_F(FactoryResetTest, RemovesSettingsAndStoresSoTheNextStartIsAFirstStart) {
    start(QStringLiteral("1.7"));
    m_defaults.set(Key::identifierPrefix, "com.example");
    createFile(m_path); // stands for the saved settings whatever the writer did
    const QString storeFile =
        RepositoryStorePaths::storeRoot() + QStringLiteral("/github/o/r/master/index.plist");
    createFile(storeFile);

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
