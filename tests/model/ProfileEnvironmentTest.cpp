// The environment a profile is made in: the system sources and the
// preferences read from the user defaults.

#include "model/ProfileEnvironment.h"
#include "plist/DefaultsKey.h"
#include "plist/UserDefaults.h"

#include <QDateTime>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace quorlin {
namespace {

TEST(ProfileEnvironmentTest, SystemSourcesGivePlatformUUIDsAndTheCurrentDate) {
    const auto environment = ProfileEnvironment::makeSystem();
    const QString first = environment->uuids->makeUUIDString();
    const QRegularExpression form(
        QStringLiteral("^[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}$"));
    EXPECT_TRUE(form.match(first).hasMatch()) << first.toStdString();
    EXPECT_NE(first, environment->uuids->makeUUIDString());

    const QDateTime now = environment->dates->now().toDateTime();
    EXPECT_LT(qAbs(now.secsTo(QDateTime::currentDateTimeUtc())), 60);
}

TEST(ProfileEnvironmentTest, PreferencesComeFromTheDefaultsAndEmptyOnesCountAsUnset) {
    QTemporaryDir folder;
    UserDefaults defaults(folder.filePath(QStringLiteral("defaults.plist")));
    defaults.set(DefaultsKey::identifierPrefix, plist::Value("com.example"));
    defaults.set(DefaultsKey::preferencesDefaultsOrganizationName, plist::Value("Example Org"));
    defaults.set(DefaultsKey::preferencesDefaultsConsentText, plist::Value(""));
    defaults.set(DefaultsKey::preferencesDefaultsSigningIdentity, plist::Value(7));

    const auto environment = ProfileEnvironment::makeFromDefaults(defaults);
    EXPECT_EQ(environment->organizationName, QStringLiteral("Example Org"));
    EXPECT_FALSE(environment->consentText);
    EXPECT_FALSE(environment->signingIdentity);
    EXPECT_EQ(environment->defaultIdentifier(QStringLiteral("U")), QStringLiteral("com.example.U"));

    // The prefix is read when an identifier is made, not when the profile was.
    defaults.set(DefaultsKey::identifierPrefix, plist::Value("org.changed"));
    EXPECT_EQ(environment->defaultIdentifier(QStringLiteral("U")), QStringLiteral("org.changed.U"));
}

} // namespace
} // namespace quorlin
