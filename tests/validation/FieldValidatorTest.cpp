// One field's validator: which text it shows, when it runs again, and when
// it tells its delegate.

#include "ValidationTestSupport.h"
#include "support/DataManifests.h"

#include "plist/UserDefaults.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using namespace quorlin::test;
using Model = PFMSupportedPlatforms::Model;

class RecordingDelegate : public FieldValidatorDelegate {
public:
    void fieldValidatorValidityDidChange(FieldValidator& validator) override {
        seen.append(validator.prominentError().value_or(QStringLiteral("<valid>")));
    }
    QStringList seen;
};

class FieldValidatorTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(folder.isValid());
        defaults = std::make_unique<UserDefaults>(folder.filePath("defaults.plist"));
        settings = std::make_shared<ValidationSettings>(*defaults);
        payload = dataPayload("validation/field-validator.plist", {{"Name", "abc"}});
    }
    std::shared_ptr<FieldValidator> validatorFor(const QString& path) {
        auto validator = FieldValidator::make(payload->keyAtPath(path));
        validator->setValidationSettings(settings);
        validator->setDelegate(delegate);
        return validator;
    }

    QTemporaryDir folder;
    std::unique_ptr<UserDefaults> defaults;
    std::shared_ptr<ValidationSettings> settings;
    Payload::Pointer payload;
    std::shared_ptr<RecordingDelegate> delegate = std::make_shared<RecordingDelegate>();
};

TEST_F(FieldValidatorTest, TheValueFaultWinsOverTheTargetFault) {
    const auto validator = validatorFor("Name");
    EXPECT_FALSE(validator->prominentError());
    settings->setTargeting(Model::iOS, true);
    settings->setMinimumVersion(Model::iOS, "12.0");
    validator->validateSettings();
    const QString targetText =
        "The preference was introduced in iOS 13.0, after your minimum target of 12.0.";
    EXPECT_EQ(validator->prominentError(), targetText);

    payload->keyAtPath("Name")->setValue(plist::Value("abcd"));
    const QString valueText = "The string has 4 character(s), which is larger than the maximum of 3.";
    EXPECT_EQ(validator->valueValidationErrors(), QStringList{valueText});
    EXPECT_EQ(validator->settingsValidationErrors(), QStringList{targetText});
    EXPECT_EQ(validator->prominentError(), valueText);

    payload->keyAtPath("Name")->setValue(plist::Value("ab"));
    EXPECT_EQ(validator->prominentError(), targetText);
    // Only the changes between valid and invalid reach the delegate.
    EXPECT_EQ(delegate->seen, QStringList{targetText});
}

TEST_F(FieldValidatorTest, AKeyNotWrittenOutHasNoTargetFaults) {
    settings->setTargeting(Model::iOS, true);
    settings->setMinimumVersion(Model::iOS, "12.0");
    payload->keyAtPath("Name")->setValue(plist::Value());
    const auto validator = validatorFor("Name");
    ASSERT_FALSE(payload->keyAtPath("Name")->isWritingOut());
    validator->validateSettings();
    EXPECT_TRUE(validator->settingsValidationErrors().isEmpty());

    payload->keyAtPath("Name")->setValue(plist::Value("a"));
    ASSERT_TRUE(payload->keyAtPath("Name")->isWritingOut());
    validator->writingOutDidChange();
    EXPECT_EQ(validator->settingsValidationErrors().size(), 1);
    EXPECT_EQ(delegate->seen.size(), 1);
}

TEST_F(FieldValidatorTest, AnArrayIsRecheckedOnChangeOnlyWhileItShowsAFault) {
    const auto validator = validatorFor("List");
    const auto list = payload->keyAtPath("List");
    list->setValue(PreferenceKeyValue(plist::Value(plist::Array{"a", "b"})));
    EXPECT_FALSE(validator->prominentError()); // waits for the section's count

    validator->validateValue();
    EXPECT_EQ(validator->prominentError(),
              "The array must contain no more than 1 item(s), but it contains 2.");
    list->setValue(PreferenceKeyValue(plist::Value(plist::Array{"a"})));
    EXPECT_FALSE(validator->prominentError());
    EXPECT_EQ(delegate->seen,
              (QStringList{"The array must contain no more than 1 item(s), but it contains 2.", "<valid>"}));
}

} // namespace
} // namespace quorlin
