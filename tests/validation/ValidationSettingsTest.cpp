// The window's targets: the remembered choice, reset and the delegate.

#include "validation/ValidationSettings.h"

#include "plist/DefaultsKey.h"
#include "plist/UserDefaults.h"
#include "support/TestSupport.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using Model = PFMSupportedPlatforms::Model;

class CountingDelegate : public ValidationSettingsDelegate {
public:
    void validationSettingsDidChange(ValidationSettings&) override { ++changes; }
    int changes = 0;
};

class ValidationSettingsTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(folder.isValid());
        defaults = std::make_unique<UserDefaults>(folder.filePath("defaults.plist"));
    }
    plist::Dictionary stored() const {
        return defaults->dictionary(DefaultsKey::lastChoiceValidationSettings).value_or(plist::Dictionary{});
    }

    QTemporaryDir folder;
    std::unique_ptr<UserDefaults> defaults;
};

TEST_F(ValidationSettingsTest, EveryChangeIsStoredAndReadByTheNextWindow) {
    ValidationSettings first(*defaults);
    first.setTargeting(Model::iOS, true);
    first.setMinimumVersion(Model::iOS, "14.0");
    first.setMaximumVersion(Model::watchOS, "9");
    first.setSupervisionInvalidates(true);
    EXPECT_EQ(stored().value("targetingIOS"), plist::Value(true));
    EXPECT_EQ(stored().value("iOSMin"), plist::Value("14.0"));

    const UserDefaults reopened(defaults->filePath());
    ValidationSettings second(*defaults);
    EXPECT_TRUE(second.targetingIOS());
    EXPECT_FALSE(second.targetingMacOS());
    EXPECT_EQ(second.minimumVersion(Model::iOS), "14.0");
    EXPECT_EQ(second.maximumVersion(Model::watchOS), "9");
    EXPECT_TRUE(second.supervisionInvalidates());
    EXPECT_EQ(reopened.dictionary(DefaultsKey::lastChoiceValidationSettings), first.persistedDictionary());

    // The later writer wins; an open window isn't updated.
    second.setTargeting(Model::iOS, false);
    EXPECT_TRUE(first.targetingIOS());
    EXPECT_EQ(stored().value("targetingIOS"), plist::Value(false));
}

TEST_F(ValidationSettingsTest, AStoredValueOfTheWrongTypeKeepsOnlyThatDefault) {
    defaults->set(DefaultsKey::lastChoiceValidationSettings,
                  plist::Dictionary{{"targetingMacOS", "yes"},
                                    {"macOSMin", "11.0"},
                                    {"targetingTvOS", true},
                                    {"deprecationInvalidates", 0},
                                    {"supervisionInvalidates", true}});
    const ValidationSettings settings(*defaults);
    EXPECT_FALSE(settings.targetingMacOS());
    EXPECT_EQ(settings.minimumVersion(Model::macOS), "11.0");
    EXPECT_TRUE(settings.targetingTvOS());
    EXPECT_TRUE(settings.deprecationInvalidates());
    EXPECT_TRUE(settings.supervisionInvalidates());
}

TEST_F(ValidationSettingsTest, ResetNotifiesEachStepAndSavesUnlessSuspended) {
    ValidationSettings settings(*defaults);
    settings.setTargeting(Model::macOS, true);
    settings.setMinimumVersion(Model::macOS, "12");
    settings.setDeprecationInvalidates(false);
    const plist::Dictionary remembered = stored();

    const auto delegate = std::make_shared<CountingDelegate>();
    settings.setDelegate(delegate);
    settings.resetWithoutSaving();
    EXPECT_EQ(delegate->changes, 14);
    EXPECT_FALSE(settings.targetingAnyPlatform());
    EXPECT_TRUE(settings.deprecationInvalidates());
    EXPECT_EQ(stored(), remembered);
    EXPECT_FALSE(settings.suspendSavingToDefaults());

    settings.setTargeting(Model::macOS, true);
    settings.reset();
    EXPECT_EQ(stored(), ValidationSettings(*defaults).persistedDictionary());
    EXPECT_EQ(stored().value("targetingMacOS"), plist::Value(false));
    // An unchanged value still notifies.
    const int before = delegate->changes;
    settings.setTargeting(Model::macOS, false);
    EXPECT_EQ(delegate->changes, before + 1);
}

} // namespace
} // namespace quorlin
