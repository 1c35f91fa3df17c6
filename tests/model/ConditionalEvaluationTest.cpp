// How each kind of test of a rule reads its target: substrings and byte
// sequences, array items, numbers by value, presence, and rules that need
// several conditions at once.

#include "ModelTestSupport.h"

#include "model/Conditional.h"

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using namespace quorlin::test;

// A payload of the given target keys and a string key "Dependent" that the
// conditions hide.
Payload::Pointer payloadHiding(const plist::Array& targets, const plist::Array& conditions) {
    plist::Array keys = targets;
    keys.append(
        keyTree("Dependent", "string", {{"pfm_exclude", plist::Array{plist::Value(rule(conditions))}}}));
    return Payload::make(domainWithKeys(keys), nullptr, makeTestEnvironment());
}

bool dependentHidden(const Payload::Pointer& payload) {
    return payload->keyAtPath("Dependent")->excludedHiddenByConditional();
}

TEST(ConditionalEvaluationTest, StringContainsAnyMatchesSubstrings) {
    const auto payload =
        payloadHiding({keyTree("Server", "string")},
                      {condition("Server", "pfm_contains_any", plist::Array{"example", "test"})});
    const auto server = payload->keyAtPath("Server");
    EXPECT_FALSE(dependentHidden(payload));
    server->setValue(plist::Value("mail.example.com"));
    EXPECT_TRUE(dependentHidden(payload));
    server->setValue(plist::Value("mail.other.org"));
    EXPECT_FALSE(dependentHidden(payload));
}

TEST(ConditionalEvaluationTest, DataNotContainsAnyLooksForByteSequences) {
    const auto payload = payloadHiding({keyTree("Certificate", "data")},
                                       {condition("Certificate", "pfm_n_contains_any",
                                                  plist::Array{plist::Value(QByteArray("\x30\x82", 2))})});
    const auto certificate = payload->keyAtPath("Certificate");
    EXPECT_TRUE(dependentHidden(payload)); // nothing contains nothing
    certificate->setValue(plist::Value(QByteArray("\x01\x30\x82\x05", 4)));
    EXPECT_FALSE(dependentHidden(payload));
    certificate->setValue(plist::Value(QByteArray("\x30\x01\x82", 3)));
    EXPECT_TRUE(dependentHidden(payload));
}

TEST(ConditionalEvaluationTest, ArrayContainsAnyComparesItemValues) {
    const auto payload =
        payloadHiding({keyTree("Protocols", "array", {{"pfm_subkeys", plist::Array{itemTree("string")}}})},
                      {condition("Protocols", "pfm_contains_any", plist::Array{"ftp"})});
    const auto protocols = payload->keyAtPath("Protocols");
    const auto item = [&](const char* text) {
        return PreferenceKey::makeFromValue(protocols->prototype().subkeys().first(), plist::Value(text),
                                            protocols);
    };
    protocols->setValue(PreferenceKey::KeyList{item("http"), item("https")});
    EXPECT_FALSE(dependentHidden(payload));
    protocols->setValue(PreferenceKey::KeyList{item("http"), item("ftp")});
    EXPECT_TRUE(dependentHidden(payload));
}

TEST(ConditionalEvaluationTest, NumbersCompareByValueWhateverTheirClass) {
    const auto payload = payloadHiding({keyTree("Level", "integer")},
                                       {condition("Level", "pfm_range_list", plist::Array{2.0, "3"})});
    const auto level = payload->keyAtPath("Level");
    level->setValue(plist::Value(2));
    EXPECT_TRUE(dependentHidden(payload));
    level->setValue(plist::Value(3)); // a string in the list never matches a number
    EXPECT_FALSE(dependentHidden(payload));
}

TEST(ConditionalEvaluationTest, NotRangeListHoldsForAnAbsentTarget) {
    const auto payload = payloadHiding({keyTree("Mode", "string")},
                                       {condition("Mode", "pfm_n_range_list", plist::Array{"manual"})});
    EXPECT_TRUE(dependentHidden(payload));
    payload->keyAtPath("Mode")->setValue(plist::Value("manual"));
    EXPECT_FALSE(dependentHidden(payload));
    payload->keyAtPath("Mode")->setValue(plist::Value("automatic"));
    EXPECT_TRUE(dependentHidden(payload));
}

TEST(ConditionalEvaluationTest, DatesMatchExactly) {
    const plist::Date day{700000000};
    const auto payload =
        payloadHiding({keyTree("Expiry", "date")},
                      {condition("Expiry", "pfm_range_list", plist::Array{plist::Value(day)})});
    payload->keyAtPath("Expiry")->setValue(plist::Value(plist::Date{700000001}));
    EXPECT_FALSE(dependentHidden(payload));
    payload->keyAtPath("Expiry")->setValue(plist::Value(day));
    EXPECT_TRUE(dependentHidden(payload));
}

TEST(ConditionalEvaluationTest, DictionaryTargetsTakeOnlyPresence) {
    const auto payload = payloadHiding(
        {keyTree("Options", "dictionary", {{"pfm_subkeys", plist::Array{keyTree("Speed", "integer")}}})},
        {condition("Options", "pfm_range_list", plist::Array{1})});
    EXPECT_TRUE(payload->keyAtPath("Dependent")->conditionals().isEmpty());
}

TEST(ConditionalEvaluationTest, AllConditionsOfARuleMustHold) {
    const auto payload = payloadHiding(
        {keyTree("Enabled", "boolean"),
         keyTree("Options", "dictionary", {{"pfm_subkeys", plist::Array{keyTree("Speed", "integer")}}})},
        {condition("Enabled", "pfm_range_list", plist::Array{true}),
         condition("Options.Speed", "pfm_range_list", plist::Array{10})});
    const auto rules = payload->keyAtPath("Dependent")->conditionals();
    ASSERT_EQ(rules.size(), 1);
    EXPECT_EQ(rules.first()->targetConditions().size(), 2);

    payload->keyAtPath("Enabled")->setValue(plist::Value(true));
    EXPECT_FALSE(dependentHidden(payload));
    payload->keyAtPath("Options.Speed")->setValue(plist::Value(10));
    EXPECT_TRUE(dependentHidden(payload));
    payload->keyAtPath("Enabled")->setValue(plist::Value(false));
    EXPECT_FALSE(dependentHidden(payload));
    payload->keyAtPath("Enabled")->setValue(plist::Value(true));
    EXPECT_TRUE(dependentHidden(payload));
}

TEST(ConditionalEvaluationTest, RulesAreEvaluatedOnValuesReadFromAProfile) {
    plist::Array keys{keyTree("Mode", "string"),
                      keyTree("Dependent", "string",
                              {{"pfm_exclude", plist::Array{plist::Value(rule({condition(
                                                   "Mode", "pfm_range_list", plist::Array{"off"})}))}}})};
    const auto payload = Payload::make(domainWithKeys(keys), nullptr, makeTestEnvironment(),
                                       plist::Dictionary{{"Mode", "off"}, {"Dependent", "kept aside"}});
    EXPECT_TRUE(dependentHidden(payload));
    EXPECT_EQ(payload->writeOutDictionary().value("Dependent"), plist::Value("kept aside"))
        << "a value read from the file is held while the rule leaves it out";
    payload->keyAtPath("Mode")->setValue(plist::Value("on"));
    EXPECT_EQ(payload->writeOutDictionary().value("Dependent"), plist::Value("kept aside"));
}

} // namespace
} // namespace quorlin
