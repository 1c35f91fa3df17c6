// Values a file holds that the keys can't bind: where they are held, how
// they are written, and when they leave.

#include "ModelTestSupport.h"
#include "support/DataManifests.h"

#include "plist/XmlWriter.h"

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using namespace quorlin::test;
using Reason = HeldValues::Reason;

Profile::Pointer parseFixture(const QString& name) {
    auto parsed = Profile::parseProfile(readFile(testDataPath("model/profiles/" + name)), fixtureDomains(),
                                        makeTestEnvironment());
    return parsed ? *parsed : nullptr;
}

struct ExpectedHeld {
    const char* path;
    Reason reason;
    const char* place;
};

TEST(HeldValues, EachValueTheKeysCantBindIsHeldAtItsPlace) {
    const auto profile = parseFixture("held-values.mobileconfig");
    ASSERT_TRUE(profile);
    const ExpectedHeld expected[] = {
        {"Count", Reason::wrongClass, ""},
        {"Name", Reason::wrongClass, ""},
        {"When", Reason::wrongClass, ""},
        {"Tags[1]", Reason::wrongClass, ""},
        {"Mixed", Reason::misfitItem, "[2]"},
        {"Mixed", Reason::misfitItem, "[3]"},
        {"Mixed", Reason::misfitItem, "[4]"},
        {"Mixed", Reason::misfitItem, "[5]"},
        {"Raw", Reason::wrongClass, ""},
        {"Settings", Reason::undescribed, "Vendor"},
        {"Settings.Inner", Reason::undescribed, "Deeper"},
        {"Settings.Inner.Flag", Reason::wrongClass, ""},
        {"Settings.Inner.Levels[1]", Reason::wrongClass, ""},
    };
    QStringList found;
    for (const auto& place : profile->configurationPayloads().first()->heldValuePlaces()) {
        for (const auto& entry : place.key->heldEntries())
            found << QStringLiteral("%1 %2 %3").arg(place.path).arg(int(entry.reason)).arg(entry.place);
    }
    QStringList wanted;
    for (const auto& held : expected)
        wanted << QStringLiteral("%1 %2 %3").arg(held.path).arg(int(held.reason)).arg(held.place);
    found.sort();
    wanted.sort();
    EXPECT_EQ(found, wanted);
}

TEST(HeldValues, SettingAKeyReplacesItsHeldValueAndRemovingUndoes) {
    const auto profile = parseFixture("held-values.mobileconfig");
    ASSERT_TRUE(profile);
    const auto& payload = profile->configurationPayloads().first();
    const auto count = payload->keyAtPath("Count");
    count->setValue(plist::Value(12));
    EXPECT_EQ(payload->writeOutDictionary().value("Count"), plist::Value(12));

    const auto settings = payload->keyAtPath("Settings");
    const HeldValues before = settings->heldValues();
    // Setting a container keeps what it holds besides its value; removing it takes all.
    settings->setValue(settings->value());
    EXPECT_EQ(settings->heldValues(), before);
    settings->replaceHeldValues({});
    EXPECT_FALSE(payload->writeOutDictionary().dictionary("Settings")->contains("Vendor"));
    settings->replaceHeldValues(before);
    EXPECT_TRUE(payload->writeOutDictionary().dictionary("Settings")->contains("Vendor"));

    const auto mixed = payload->keyAtPath("Mixed");
    mixed->setValue(PreferenceKeyValue());
    EXPECT_TRUE(mixed->heldValues().isEmpty());
    EXPECT_FALSE(payload->writeOutDictionary().contains("Mixed"));
}

TEST(HeldValues, AValueARuleLeavesOutIsHeldWhileTheRuleHolds) {
    const auto domain = dataDomain("model/manifests/excluded-when-off.plist");
    const plist::Dictionary read{{"PayloadType", "com.example.test"},
                                 {"Enable", false},
                                 {"Server", "s.example"},
                                 {"Proxy", plist::Dictionary{{"Host", "h"}, {"Other", 1}}}};
    const auto payload = Payload::make(domain, nullptr, makeTestEnvironment(), read);
    EXPECT_EQ(payload->writeOutDictionary(), read);
    const auto server = payload->keyAtPath("Server");
    ASSERT_EQ(server->heldEntries().size(), 1);
    EXPECT_EQ(server->heldEntries().first().reason, Reason::excluded);
    ASSERT_EQ(payload->heldValuePlaces().size(), 2) << "nothing inside an excluded dictionary counts twice";

    payload->keyAtPath("Enable")->setValue(plist::Value(true));
    EXPECT_TRUE(server->heldEntries().isEmpty());
    EXPECT_EQ(payload->heldValuePlaces().size(), 1) << "only the undescribed key of the proxy is left";
    plist::Dictionary enabled = read;
    enabled.insert("Enable", true);
    EXPECT_EQ(payload->writeOutDictionary(), enabled);
}

// Thousands of held values and a deep nest: both kept, on one linear road.
TEST(HeldValues, ManyHeldValuesAndADeepNestAreKept) {
    plist::Dictionary keyTreeNest = keyTree("Level", "string");
    plist::Dictionary valueNest{{"Held", "at the bottom"}};
    // The deepest nest a manifest may describe: 63 dictionaries and a leaf.
    for (int depth = 1; depth < PFMKeyPrototype::maximumDepth; ++depth) {
        keyTreeNest = withSubkeys(keyTree("Level", "dictionary"), plist::Array{keyTreeNest});
        valueNest = plist::Dictionary{{"Level", valueNest}};
    }
    plist::Array tags;
    for (int index = 0; index < 5000; ++index)
        tags.append(index % 2 ? plist::Value(index) : plist::Value(QString::number(index)));
    const auto domain =
        domainWithKeys({keyTree("PayloadType", "string"), keyTreeNest,
                        withSubkeys(keyTree("Tags", "array"), plist::Array{itemTree("string")})});
    plist::Dictionary read = valueNest;
    read.insert("PayloadType", "com.example.test");
    read.insert("Tags", tags);
    const auto payload = Payload::make(domain, nullptr, makeTestEnvironment(), read);
    EXPECT_EQ(payload->writeOutDictionary(), read);
    EXPECT_EQ(payload->heldValuePlaces().size(), 2500 + 1);
}

} // namespace
} // namespace quorlin
