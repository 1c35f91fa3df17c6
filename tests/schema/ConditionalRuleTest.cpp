#include "schema/PFMConditionalPrototype.h"
#include "schema/PFMTargetConditionPrototype.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

using namespace quorlin;
using plist::Array;
using plist::Dictionary;
using RequireStatus = PFMConditionalPrototype::RequireStatus;
using RuleKind = PFMConditionalPrototype::Kind;

namespace {

const Dictionary presentCondition{{"pfm_target", "Enabled"}, {"pfm_present", true}};

Dictionary ruleTree(const Array& conditions, Dictionary extra = {}) {
    extra.insert(QStringLiteral("pfm_target_conditions"), conditions);
    return extra;
}

} // namespace

TEST(TargetCondition, ReadsTargetAndEveryTest) {
    const auto condition = PFMTargetConditionPrototype::make(Dictionary{{"pfm_target", "Account.Type"},
                                                                        {"pfm_contains_any", Array{"a"}},
                                                                        {"pfm_n_contains_any", Array{"b"}},
                                                                        {"pfm_range_list", Array{1, 2}},
                                                                        {"pfm_n_range_list", Array{3}},
                                                                        {"pfm_present", false}});
    ASSERT_TRUE(condition);
    EXPECT_EQ(condition->targetPath(), QStringLiteral("Account.Type"));
    EXPECT_EQ(condition->containsAny(), Array{"a"});
    EXPECT_EQ(condition->notContainsAny(), Array{"b"});
    EXPECT_EQ(condition->rangeList(), (Array{1, 2}));
    EXPECT_EQ(condition->notRangeList(), Array{3});
    EXPECT_EQ(condition->present(), false);
}

TEST(TargetCondition, NeedsAStringTargetAndAtLeastOneReadableTest) {
    EXPECT_FALSE(PFMTargetConditionPrototype::make(Dictionary{{"pfm_present", true}}));
    EXPECT_FALSE(PFMTargetConditionPrototype::make(Dictionary{{"pfm_target", 1}, {"pfm_present", true}}));
    EXPECT_FALSE(PFMTargetConditionPrototype::make(Dictionary{{"pfm_target", "A"}}));
    // Tests of the wrong type count as absent, which leaves nothing to test.
    EXPECT_FALSE(PFMTargetConditionPrototype::make(Dictionary{{"pfm_target", "A"},
                                                              {"pfm_contains_any", "a"},
                                                              {"pfm_n_contains_any", Dictionary{}},
                                                              {"pfm_range_list", 1},
                                                              {"pfm_n_range_list", true},
                                                              {"pfm_present", 1}}));

    // An empty list is still a list.
    const auto emptyList =
        PFMTargetConditionPrototype::make(Dictionary{{"pfm_target", "A"}, {"pfm_contains_any", Array{}}});
    ASSERT_TRUE(emptyList);
    EXPECT_EQ(emptyList->containsAny(), Array{});
    EXPECT_FALSE(emptyList->rangeList());
    EXPECT_FALSE(emptyList->present());
}

TEST(ConditionalRule, RequirementStatusIsMatchedInAnyCaseAndDefaultsToAlways) {
    const auto statusOf = [](const plist::Value& word) {
        Dictionary rule = ruleTree({presentCondition});
        if (!word.isNull())
            rule.insert("pfm_require", word);
        const auto parsed = PFMConditionalPrototype::make(rule, false);
        EXPECT_TRUE(parsed);
        EXPECT_EQ(parsed->kind(), RuleKind::requirement);
        EXPECT_FALSE(parsed->exclusionDisables());
        return parsed->requireStatus();
    };
    EXPECT_EQ(statusOf("push"), RequireStatus::push);
    EXPECT_EQ(statusOf("PUSH"), RequireStatus::push);
    EXPECT_EQ(statusOf("Always"), RequireStatus::always);
    EXPECT_EQ(statusOf("sometimes"), RequireStatus::always);
    EXPECT_EQ(statusOf(true), RequireStatus::always);
    EXPECT_EQ(statusOf({}), RequireStatus::always);

    EXPECT_EQ(PFMConditionalPrototype::rawValue(RequireStatus::always), QStringLiteral("always"));
    EXPECT_EQ(PFMConditionalPrototype::rawValue(RequireStatus::push), QStringLiteral("push"));
}

TEST(ConditionalRule, ExclusionsReadTheDisablingFlagAndNeverARequireStatus) {
    const auto hides =
        PFMConditionalPrototype::make(ruleTree({presentCondition}, {{"pfm_require", "push"}}), true);
    ASSERT_TRUE(hides);
    EXPECT_EQ(hides->kind(), RuleKind::exclusion);
    EXPECT_FALSE(hides->requireStatus());
    EXPECT_FALSE(hides->exclusionDisables());

    const auto disables = PFMConditionalPrototype::make(
        ruleTree({presentCondition}, {{"pfm_quorlin_exclusion_disables", true}}), true);
    EXPECT_TRUE(disables->exclusionDisables());
    const auto notABoolean = PFMConditionalPrototype::make(
        ruleTree({presentCondition}, {{"pfm_quorlin_exclusion_disables", 1}}), true);
    EXPECT_FALSE(notABoolean->exclusionDisables());
    // The flag means nothing to a requirement rule.
    const auto requirement = PFMConditionalPrototype::make(
        ruleTree({presentCondition}, {{"pfm_quorlin_exclusion_disables", true}}), false);
    EXPECT_FALSE(requirement->exclusionDisables());
}

TEST(ConditionalRule, KeepsReadableConditionsAndFailsWithoutAny) {
    const auto rule = PFMConditionalPrototype::make(
        ruleTree({Dictionary{{"pfm_target", "A"}}, Dictionary{{"pfm_present", true}},
                  Dictionary{{"pfm_target", "B"}, {"pfm_range_list", "x"}},
                  Dictionary{{"pfm_target", "Server.Port"}, {"pfm_range_list", Array{443}}},
                  Dictionary{{"pfm_target", "Server.Port"}, {"pfm_n_range_list", Array{80}}},
                  Dictionary{{"pfm_target", "Mode"}, {"pfm_present", false}}}),
        false);
    ASSERT_TRUE(rule);
    ASSERT_EQ(rule->targetConditions().size(), 3);
    EXPECT_EQ(rule->targetConditions()[0].rangeList(), Array{443});
    EXPECT_EQ(rule->targetConditions()[2].targetPath(), QStringLiteral("Mode"));
    EXPECT_EQ(rule->targetPaths(), (QSet<QString>{"Server.Port", "Mode"}));

    EXPECT_FALSE(PFMConditionalPrototype::make(ruleTree({Dictionary{{"pfm_target", "A"}}}), false));
    EXPECT_FALSE(PFMConditionalPrototype::make(ruleTree({presentCondition, "not a condition"}), false));
    EXPECT_FALSE(PFMConditionalPrototype::make(ruleTree({}), true));
    EXPECT_FALSE(
        PFMConditionalPrototype::make(Dictionary{{"pfm_target_conditions", presentCondition}}, false));
    EXPECT_FALSE(PFMConditionalPrototype::make(Dictionary{}, false));
}
