// The faults of a whole profile, in the order the side-bar and the
// command-line check list them.

#include "ValidationTestSupport.h"

#include "plist/UserDefaults.h"
#include "validation/ProfileValidation.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace quorlin {

inline void PrintTo(const ProfileValidation::FieldError& error, std::ostream* out) {
    *out << "{" << error.keyPath.toStdString() << ": " << error.message.toStdString() << "}";
}

namespace {

using namespace quorlin::test;
using Model = PFMSupportedPlatforms::Model;

std::shared_ptr<const PFMDomain> relayDomain() {
    return PFMDomain::make(readDictionary(testDataPath("validation/network.plist")));
}

class ProfileValidationTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(folder.isValid());
        defaults = std::make_unique<UserDefaults>(folder.filePath("defaults.plist"));
        settings = std::make_unique<ValidationSettings>(*defaults);
        const auto relay = relayDomain();
        ASSERT_TRUE(relay);
        profile = Profile::makeNewProfile({fixtureDomain("root"), relay}, makeTestEnvironment());
        ASSERT_TRUE(profile);
        first = profile->addPayload(relay);
        second = profile->addPayload(relay);
        ASSERT_TRUE(first && second);
    }
    QList<ProfileValidation::FieldError> errorsOf(const Payload::Pointer& payload) const {
        QList<ProfileValidation::FieldError> errors;
        for (const auto& error : ProfileValidation::validate(*profile, settings.get())) {
            if (error.payload == payload)
                errors.append(error);
        }
        return errors;
    }
    static void set(const Payload::Pointer& payload, const QString& name, const plist::Value& value) {
        payload->keyNamed(name).first()->setValue(value);
    }

    QTemporaryDir folder;
    std::unique_ptr<UserDefaults> defaults;
    std::unique_ptr<ValidationSettings> settings;
    Profile::Pointer profile;
    Payload::Pointer first;
    Payload::Pointer second;
};

TEST_F(ProfileValidationTest, ValueFaultsInPayloadAndKeyOrder) {
    set(second, "Port", 70000);
    set(first, "Host", "Relay.Example");
    const auto account = first->keyNamed("Account").first();
    const auto user = PreferenceKey::makeNew(account->prototype().subkeys().first(), account);
    user->setValue(plist::Value("al"));
    account->setValue(PreferenceKey::KeyMap{{"User", user}});
    const auto mirrors = first->keyNamed("Mirrors").first();
    PreferenceKey::KeyList rows;
    for (const char* row : {"near", "far-away-mirror"}) {
        rows.append(PreferenceKey::makeNew(mirrors->prototype().subkeys().first(), mirrors));
        rows.last()->setValue(plist::Value(row));
    }
    mirrors->setValue(rows);

    const auto all = ProfileValidation::validate(*profile, settings.get());
    const auto firstErrors = errorsOf(first);
    const auto secondErrors = errorsOf(second);
    ASSERT_EQ(firstErrors.size(), 4);
    EXPECT_EQ(firstErrors[0].keyPath, "Host");
    EXPECT_EQ(firstErrors[0].message, "The entered information is not in the correct format for this field.");
    EXPECT_EQ(firstErrors[1].keyPath, "Account");
    EXPECT_EQ(firstErrors[1].message, "One of the dictionary items is invalid.");
    EXPECT_EQ(firstErrors[2].keyPath, "Account.User");
    EXPECT_EQ(firstErrors[2].message,
              "The string has 2 character(s), which is smaller than the minimum of 3.");
    EXPECT_EQ(firstErrors[3].keyPath, "Mirrors");
    EXPECT_EQ(firstErrors[3].message, "One of the table items is invalid.");
    ASSERT_EQ(secondErrors.size(), 1);
    EXPECT_EQ(secondErrors[0].keyPath, "Port");

    // Root first, then the payloads in the profile's order.
    ASSERT_GE(all.size(), 5);
    EXPECT_EQ(all.mid(all.size() - 5), firstErrors + secondErrors);
    for (const auto& error : all.first(all.size() - 5))
        EXPECT_EQ(error.payload, profile->rootPayload());
}

TEST_F(ProfileValidationTest, TargetFaultsOnlyForKeysThatAreWrittenOut) {
    set(first, "Port", 443);
    settings->setTargeting(Model::macOS, true);
    const auto errors = errorsOf(first);
    ASSERT_FALSE(errors.isEmpty());
    QStringList paths;
    for (const auto& error : errors) {
        paths.append(error.keyPath);
        EXPECT_EQ(error.message, "The preference is not supported on macOS.");
    }
    EXPECT_TRUE(paths.contains("Port"));
    EXPECT_FALSE(paths.contains("Host"));

    EXPECT_TRUE(errorsOf(second).size() < errors.size());
    EXPECT_TRUE(ProfileValidation::validatePayload(first, nullptr).isEmpty());
}

} // namespace
} // namespace quorlin
