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

// Each case of tests/data/model/conditions.plist: target keys, the conditions
// of one rule that hides "Dependent", and values set in turn with whether the
// rule then holds ("hidden"; a step without a path only checks).
TEST(ConditionalEvaluationTest, EachCaseOfTheTableHidesTheDependentKeyInTurn) {
    const auto read = plist::PlistReader::read(readFile(testDataPath("model/conditions.plist")));
    ASSERT_TRUE(read && read->root.array());
    for (const plist::Value& entry : *read->root.array()) {
        const plist::Dictionary& test = *entry.dictionary();
        SCOPED_TRACE(test.string("case")->toStdString());
        const auto payload = payloadHiding(*test.array("targets"), *test.array("conditions"));
        const auto rules = payload->keyAtPath("Dependent")->conditionals();
        ASSERT_EQ(rules.size(), 1);
        EXPECT_EQ(rules.first()->targetConditions().size(), test.array("conditions")->size());
        for (const plist::Value& step : *test.array("steps")) {
            if (const auto path = step.dictionary()->string("path"))
                payload->keyAtPath(*path)->setValue(step.dictionary()->value("value"));
            EXPECT_EQ(dependentHidden(payload), *step.dictionary()->boolean("hidden"))
                << step.debugDescription().toStdString();
        }
    }
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

TEST(ConditionalEvaluationTest, DictionaryTargetsTakeOnlyPresence) {
    const auto payload = payloadHiding(
        {keyTree("Options", "dictionary", {{"pfm_subkeys", plist::Array{keyTree("Speed", "integer")}}})},
        {condition("Options", "pfm_range_list", plist::Array{1})});
    EXPECT_TRUE(payload->keyAtPath("Dependent")->conditionals().isEmpty());
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
