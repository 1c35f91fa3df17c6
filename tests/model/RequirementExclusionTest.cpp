// Requirement and exclusion across nested keys: which keys must be there,
// which a rule hides or disables, and what that does to the written payload.

#include "ModelTestSupport.h"
#include "support/DataManifests.h"

#include "model/Conditional.h"
#include "model/PreferenceKey.h"

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using namespace quorlin::test;
using Status = PreferenceKey::RequirementStatus;

class RequirementExclusionTest : public ::testing::Test {
protected:
    void SetUp() override {
        payload = dataPayload("model/manifests/rules.plist");
        ASSERT_TRUE(payload);
    }
    PreferenceKey::Pointer key(const QString& path) const {
        auto found = payload->keyAtPath(path);
        EXPECT_TRUE(found) << path.toStdString();
        return found;
    }
    plist::Dictionary written() const { return payload->writeOutDictionary(); }

    Payload::Pointer payload;
};

TEST_F(RequirementExclusionTest, OnlyRequiredKeysWithDefaultsStartWithValues) {
    EXPECT_EQ(written(), (plist::Dictionary{{QStringLiteral("Version"), 3}}));
    EXPECT_TRUE(key("Comment")->value().isAbsent());
    EXPECT_TRUE(key("Comment")->hasDefaultAvailable());
    EXPECT_EQ(key("Version")->requirementStatus(), Status::required);
    EXPECT_TRUE(key("Version")->required());
}

TEST_F(RequirementExclusionTest, RequiredKeyInOptionalDictionaryIsOnlyConditionallyRequired) {
    const auto host = key("Proxy.Host");
    EXPECT_EQ(host->requirementStatus(), Status::requiredConditionally);
    EXPECT_TRUE(host->value().isAbsent());
    EXPECT_FALSE(host->required());
    EXPECT_FALSE(key("Proxy")->isWritingOut());
    EXPECT_FALSE(written().contains(QStringLiteral("Proxy")));
}

TEST_F(RequirementExclusionTest, LeafValueClimbsToDictionariesAndMakesSiblingsRequired) {
    key("Proxy.Auth.User")->setValue(plist::Value("jane"));

    EXPECT_TRUE(key("Proxy.Auth")->isWritingOut());
    EXPECT_TRUE(key("Proxy")->isWritingOut());
    EXPECT_TRUE(key("Proxy.Host")->required());
    EXPECT_FALSE(key("Proxy.Auth.Password")->required());
    const plist::Dictionary auth{{QStringLiteral("User"), "jane"}};
    EXPECT_EQ(written().value(QStringLiteral("Proxy")),
              plist::Value(plist::Dictionary{{QStringLiteral("Auth"), plist::Value(auth)}}));

    key("Proxy.Auth.User")->setValue({});
    EXPECT_FALSE(key("Proxy")->isWritingOut());
    EXPECT_FALSE(key("Proxy.Host")->required());
}

TEST_F(RequirementExclusionTest, HiddenKeyKeepsItsValueAndReturnsWhenTheRuleStops) {
    const auto server = key("Server");
    server->setValue(plist::Value("mail.example.com"));
    key("Enable")->setValue(plist::Value(false));

    EXPECT_TRUE(server->excludedHiddenByConditional());
    EXPECT_FALSE(server->excludedDisabledByConditional());
    EXPECT_EQ(*server->value().plistValue(), plist::Value("mail.example.com"));
    EXPECT_FALSE(written().contains(QStringLiteral("Server")));

    key("Enable")->setValue({});
    EXPECT_FALSE(server->excluded());
    EXPECT_EQ(written().value(QStringLiteral("Server")), plist::Value("mail.example.com"));
}

TEST_F(RequirementExclusionTest, DisabledDictionaryDisablesEveryDescendant) {
    key("Proxy.Auth.User")->setValue(plist::Value("jane"));
    key("Enable")->setValue(plist::Value(false));

    for (const char* path : {"Proxy", "Proxy.Host", "Proxy.Auth", "Proxy.Auth.User"}) {
        EXPECT_TRUE(key(path)->excludedDisabledByConditional()) << path;
        EXPECT_FALSE(key(path)->excludedHiddenByConditional()) << path;
    }
    EXPECT_FALSE(written().contains(QStringLiteral("Proxy")));
    EXPECT_TRUE(key("Proxy.Auth.User")->inheritedExclusionByRule());

    key("Enable")->setValue(plist::Value(true));
    EXPECT_FALSE(key("Proxy.Auth.User")->excluded());
    EXPECT_TRUE(key("Proxy")->isWritingOut());
}

TEST_F(RequirementExclusionTest, FormMayTurnHidingIntoDisabling) {
    const auto server = key("Server");
    server->setAllExclusionsShouldDisable(true);
    key("Enable")->setValue(plist::Value(false));
    EXPECT_FALSE(server->excludedHiddenByConditional());
    EXPECT_TRUE(server->excludedDisabledByConditional());
}

TEST_F(RequirementExclusionTest, RequirementRuleFollowsPresenceOfItsTarget) {
    const auto port = key("Port");
    EXPECT_EQ(port->requirementStatus(), Status::requiredConditionally);
    EXPECT_FALSE(port->required());

    key("Server")->setValue(plist::Value("host"));
    EXPECT_TRUE(port->requiredByConditional());
    EXPECT_TRUE(port->required());

    key("Server")->setValue({});
    EXPECT_FALSE(port->required());
}

TEST_F(RequirementExclusionTest, PresenceOfDictionaryFollowsWritingOutWhateverItSays) {
    // The rule reads "Proxy absent", yet holds exactly while Proxy is written.
    const auto watcher = key("Watcher");
    EXPECT_FALSE(watcher->requiredByConditional());
    key("Proxy.Auth.Password")->setValue(plist::Value("secret"));
    EXPECT_TRUE(watcher->requiredByConditional());
    key("Proxy.Auth.Password")->setValue({});
    EXPECT_FALSE(watcher->requiredByConditional());
}

TEST_F(RequirementExclusionTest, RulesOnMissingOrUnfitTargetsLoseThoseConditions) {
    EXPECT_TRUE(key("Orphan")->conditionals().isEmpty());
    EXPECT_EQ(key("Orphan")->requirementStatus(), Status::notRequired);
    EXPECT_TRUE(key("Flagged")->conditionals().isEmpty());

    const auto half = key("Half");
    ASSERT_EQ(half->conditionals().size(), 1);
    EXPECT_EQ(half->conditionals().first()->targetConditions().size(), 1);
    key("Enable")->setValue(plist::Value(true));
    EXPECT_TRUE(half->required());
}

TEST_F(RequirementExclusionTest, GhostKeyIsKeptButNeverWritten) {
    const auto shadow = key("Shadow");
    shadow->setValue(plist::Value("kept"));
    EXPECT_FALSE(shadow->isWritingOut());
    EXPECT_FALSE(shadow->writeOutValue());
    EXPECT_FALSE(written().contains(QStringLiteral("Shadow")));
}

class RecordingObserver : public PreferenceKeyObserver {
public:
    void preferenceKeyValueDidChange(PreferenceKey& key) override { changed.append(key.name()); }
    QStringList changed;
};

TEST_F(RequirementExclusionTest, LeafChangeReachesObserversOfEveryAncestor) {
    auto proxyObserver = std::make_shared<RecordingObserver>();
    auto userObserver = std::make_shared<RecordingObserver>();
    key("Proxy")->addObserver(proxyObserver);
    key("Proxy.Auth.User")->addObserver(userObserver);

    key("Proxy.Auth.User")->setValue(plist::Value("jane"));
    EXPECT_EQ(userObserver->changed, QStringList{QStringLiteral("User")});
    EXPECT_EQ(proxyObserver->changed, QStringList{QStringLiteral("Proxy")});

    key("Proxy")->removeObserver(proxyObserver.get());
    key("Proxy.Auth.Password")->setValue(plist::Value("secret"));
    EXPECT_EQ(proxyObserver->changed.size(), 1);
}

TEST_F(RequirementExclusionTest, LinksBetweenKeysAndObserversAreWeak) {
    std::weak_ptr<RecordingObserver> observerLink;
    {
        auto observer = std::make_shared<RecordingObserver>();
        observerLink = observer;
        key("Server")->addObserver(observer);
    }
    EXPECT_TRUE(observerLink.expired());
    key("Server")->setValue(plist::Value("still fine"));

    // Rules observe their targets; nothing may keep the key tree alive once its payload goes.
    std::weak_ptr<PreferenceKey> enableLink = key("Enable");
    std::weak_ptr<Conditional> ruleLink = key("Server")->conditionals().first();
    payload.reset();
    EXPECT_TRUE(enableLink.expired());
    EXPECT_TRUE(ruleLink.expired());
}

} // namespace
} // namespace quorlin
