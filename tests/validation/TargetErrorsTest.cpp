// The faults of a key against the window's targets: platforms it lacks,
// versions before its introduction, its deprecation and removal. The cases
// are a table in tests/data/validation/target-errors.plist: the targets (each
// platform's minimum and maximum), the choices about deprecation and
// supervision, the key's rules and the errors expected.

#include "ValidationTestSupport.h"

#include "plist/PlistReader.h"
#include "plist/UserDefaults.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using namespace quorlin::test;
using Model = PFMSupportedPlatforms::Model;

class TargetErrorsTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(folder.isValid());
        defaults = std::make_unique<UserDefaults>(folder.filePath("defaults.plist"));
        settings = std::make_unique<ValidationSettings>(*defaults);
    }

    QTemporaryDir folder;
    std::unique_ptr<UserDefaults> defaults;
    std::unique_ptr<ValidationSettings> settings;
};

TEST_F(TargetErrorsTest, EachCaseOfTheTableGivesItsErrors) {
    const auto read = plist::PlistReader::read(readFile(testDataPath("validation/target-errors.plist")));
    ASSERT_TRUE(read && read->root.array());
    ASSERT_GT(read->root.array()->size(), 15);
    for (const plist::Value& entry : *read->root.array()) {
        const plist::Dictionary& test = *entry.dictionary();
        SCOPED_TRACE(test.string("case")->toStdString());
        settings->resetWithoutSaving();
        const plist::Dictionary& targets = *test.dictionary("targets");
        for (auto target = targets.begin(); target != targets.end(); ++target) {
            const auto model = PFMSupportedPlatforms::modelFromRawValue(target.key());
            ASSERT_TRUE(model);
            settings->setTargeting(*model, true);
            settings->setMinimumVersion(*model, *target.value().array()->at(0).toString());
            settings->setMaximumVersion(*model, *target.value().array()->at(1).toString());
        }
        settings->setDeprecationInvalidates(test.boolean("deprecationInvalidates").value_or(true));
        settings->setSupervisionInvalidates(test.boolean("supervisionInvalidates").value_or(false));
        const auto payload = payloadWith(plist::Array{keyTree("Value", "string", *test.dictionary("rules"))});
        QStringList expected;
        for (const plist::Value& error : *test.array("errors"))
            expected << *error.toString();
        EXPECT_EQ(FieldValidator::settingsErrors(*settings, *payload->keyAtPath("Value")), expected);
    }
}

TEST_F(TargetErrorsTest, SubkeysInheritTheirParentsAvailability) {
    settings->setTargeting(Model::iOS, true);
    settings->setMinimumVersion(Model::iOS, "12.0");
    const auto payload = payloadWith(
        plist::Array{keyTree("Parent", "dictionary",
                             {{"pfmx_supported_oses",
                               plist::Dictionary{{"iOS", plist::Dictionary{{"pfmx_introduced", "13.0"}}}}},
                              {"pfm_subkeys", plist::Array{keyTree("Child", "string")}}})},
        {{"Parent", plist::Dictionary{{"Child", "set"}}}});
    EXPECT_EQ(FieldValidator::settingsErrors(*settings, *payload->keyAtPath("Parent.Child")),
              QStringList{"The preference was introduced in iOS 13.0, after your minimum target of 12.0."});
}

} // namespace
} // namespace quorlin
