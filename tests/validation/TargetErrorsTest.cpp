// The faults of a key against the window's targets: platforms it lacks,
// versions before its introduction, its deprecation and removal.

#include "ValidationTestSupport.h"

#include "plist/UserDefaults.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using namespace quorlin::test;
using Model = PFMSupportedPlatforms::Model;

plist::Dictionary os(const QString& introduced, const QString& deprecated = {}, const QString& removed = {}) {
    plist::Dictionary entry{{"pfmx_introduced", introduced}};
    if (!deprecated.isEmpty())
        entry.insert("pfmx_deprecated", deprecated);
    if (!removed.isEmpty())
        entry.insert("pfmx_removed", removed);
    return entry;
}

class TargetErrorsTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(folder.isValid());
        defaults = std::make_unique<UserDefaults>(folder.filePath("defaults.plist"));
        settings = std::make_unique<ValidationSettings>(*defaults);
    }

    // The target errors of a key "Value" with the given availability.
    QStringList errorsFor(const plist::Dictionary& supportedOSes, plist::Dictionary extra = {}) {
        if (!supportedOSes.isEmpty())
            extra.insert("pfmx_supported_oses", supportedOSes);
        payload = payloadWith(plist::Array{keyTree("Value", "string", extra)});
        return FieldValidator::settingsErrors(*settings, *payload->keyAtPath("Value"));
    }

    void target(Model model, const QString& minimum = {}, const QString& maximum = {}) {
        settings->setTargeting(model, true);
        settings->setMinimumVersion(model, minimum);
        settings->setMaximumVersion(model, maximum);
    }

    QTemporaryDir folder;
    std::unique_ptr<UserDefaults> defaults;
    std::unique_ptr<ValidationSettings> settings;
    Payload::Pointer payload;
};

TEST_F(TargetErrorsTest, NoTargetsNoErrors) {
    EXPECT_TRUE(errorsFor({{"macOS", os("13.0", "14.0", "15.0")}}).isEmpty());
}

TEST_F(TargetErrorsTest, AKeyThatSaysNothingOfItsPlatformsPassesEveryTarget) {
    for (const Model model : PFMSupportedPlatforms::allModels)
        target(model, "1.0", "99.0");
    EXPECT_TRUE(errorsFor({}).isEmpty());
}

TEST_F(TargetErrorsTest, IntroductionAfterTheTargets) {
    target(Model::macOS);
    EXPECT_TRUE(errorsFor({{"macOS", os("10.12")}}).isEmpty()) << "no minimum, nothing to be after";

    target(Model::macOS, "12.0");
    EXPECT_EQ(errorsFor({{"macOS", os("13.0")}}),
              QStringList{"The preference was introduced in macOS 13.0, after your minimum target of 12.0."});
    EXPECT_TRUE(errorsFor({{"macOS", os("12")}}).isEmpty());

    target(Model::macOS, "11.0", "12.0");
    EXPECT_EQ(errorsFor({{"macOS", os("13.0")}}),
              QStringList{"The preference was introduced in macOS 13.0, after your maximum target of 12.0."});
}

TEST_F(TargetErrorsTest, DeprecationAgainstTheMinimum) {
    target(Model::iOS, "12.0");
    EXPECT_EQ(errorsFor({{"iOS", os("5.0", "12.0")}}),
              QStringList{"The preference was deprecated in iOS 12.0, your minimum target."});
    EXPECT_EQ(
        errorsFor({{"iOS", os("5.0", "11.0")}}),
        QStringList{"The preference was deprecated in iOS 11.0, ahead of your minimum target of 12.0."});
    // Without a maximum, a later deprecation is already reached at the top end.
    EXPECT_EQ(errorsFor({{"iOS", os("5.0", "13.0")}}),
              QStringList{"The preference was deprecated in iOS 13.0, ahead of your maximum target."});
    settings->setMaximumVersion(Model::iOS, "12.5");
    EXPECT_TRUE(errorsFor({{"iOS", os("5.0", "13.0")}}).isEmpty());

    settings->setDeprecationInvalidates(false);
    EXPECT_TRUE(errorsFor({{"iOS", os("5.0", "11.0")}}).isEmpty());
}

TEST_F(TargetErrorsTest, DeprecationAgainstTheMaximumAndRemoval) {
    target(Model::iOS, "12.0", "15.0");
    EXPECT_EQ(
        errorsFor({{"iOS", os("5.0", "14.0")}}),
        QStringList{"The preference was deprecated in iOS 14.0, ahead of your maximum target of 15.0."});
    EXPECT_EQ(errorsFor({{"iOS", os("5.0", {}, "15.0")}}),
              QStringList{"The preference was removed in iOS 15.0, your maximum target."});
    // Removal by the minimum ends the tests: the maximum isn't looked at.
    EXPECT_EQ(
        errorsFor({{"iOS", os("5.0", "10.0", "11.0")}}),
        QStringList{"The preference was deprecated in iOS 10.0, ahead of your minimum target of 12.0 and "
                    "was removed in iOS 11.0, ahead of your minimum target of 12.0."});
    // Introduced after the maximum: only removal by the maximum is skipped.
    EXPECT_EQ(errorsFor({{"iOS", os("16.0", "14.0", "15.0")}}),
              QStringList{"The preference was introduced in iOS 16.0, after your maximum target of 15.0 and "
                          "was deprecated in iOS 14.0, ahead of your maximum target of 15.0."});
}

TEST_F(TargetErrorsTest, UnsupportedPlatformsComeLastInOneSeries) {
    target(Model::iOS);
    target(Model::macOS, "11.0");
    target(Model::tvOS);
    const plist::Dictionary availability{{"macOS", os("12.0")}, {"iOS", os("n/a")}, {"tvOS", os("n/a")}};
    EXPECT_EQ(
        errorsFor(availability),
        QStringList{"The preference was introduced in macOS 12.0, after your minimum target of 11.0 and is "
                    "not supported on iOS or tvOS."});

    target(Model::watchOS);
    EXPECT_EQ(
        errorsFor({{"macOS", os("12.0")}, {"iOS", os("n/a")}, {"tvOS", os("n/a")}, {"watchOS", os("n/a")}}),
        QStringList{"The preference was introduced in macOS 12.0, after your minimum target of 11.0 and is "
                    "not supported on iOS, tvOS, or watchOS."});
}

TEST_F(TargetErrorsTest, SupervisionIsASecondError) {
    target(Model::iOS);
    settings->setSupervisionInvalidates(true);
    EXPECT_EQ(errorsFor({{"iOS", os("n/a")}}, {{"pfm_quorlin_supervision_required", true}}),
              (QStringList{"The preference is not supported on iOS.",
                           "This preference key requires devices to be supervised."}));
    settings->setSupervisionInvalidates(false);
    EXPECT_TRUE(errorsFor({}, {{"pfm_quorlin_supervision_required", true}}).isEmpty());
}

TEST_F(TargetErrorsTest, SubkeysInheritTheirParentsAvailability) {
    target(Model::iOS, "12.0");
    payload =
        payloadWith(plist::Array{keyTree("Parent", "dictionary",
                                         {{"pfmx_supported_oses", plist::Dictionary{{"iOS", os("13.0")}}},
                                          {"pfm_subkeys", plist::Array{keyTree("Child", "string")}}})},
                    {{"Parent", plist::Dictionary{{"Child", "set"}}}});
    EXPECT_EQ(FieldValidator::settingsErrors(*settings, *payload->keyAtPath("Parent.Child")),
              QStringList{"The preference was introduced in iOS 13.0, after your minimum target of 12.0."});
}

} // namespace
} // namespace quorlin
