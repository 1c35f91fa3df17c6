#include "ModelTestSupport.h"

#include "model/ArrayItemMatcher.h"
#include "model/PayloadMatcher.h"
#include "model/ProfileComparison.h"
#include "model/ProfileDifferenceText.h"

#include <gtest/gtest.h>

using namespace quorlin;
using Kind = ProfileDifference::Kind;

namespace {

plist::Array strings(const QStringList& values) {
    plist::Array array;
    for (const QString& value : values)
        array << plist::Value(value);
    return array;
}

// Item moves as "old>new" (1-based), lone items as "+new" and "-old".
QStringList moves(const plist::Array& oldItems, const plist::Array& newItems) {
    QStringList found;
    for (const auto& match : ArrayItemMatcher::match(oldItems, newItems)) {
        if (!match.oldIndex)
            found << QStringLiteral("+%1").arg(*match.newIndex + 1);
        else if (!match.newIndex)
            found << QStringLiteral("-%1").arg(*match.oldIndex + 1);
        else if (match.moved)
            found << QStringLiteral("%1>%2").arg(*match.oldIndex + 1).arg(*match.newIndex + 1);
    }
    return found;
}

plist::Dictionary payload(const QString& type, const QString& identifier, const QString& name,
                          plist::Dictionary settings = {}) {
    settings.insert("PayloadType", type);
    settings.insert("PayloadIdentifier", identifier);
    settings.insert("PayloadDisplayName", name);
    return settings;
}

// Pairs as "old-new" (1-based, 0 for none), in the matcher's order.
QStringList pairs(const QList<plist::Dictionary>& oldPayloads, const QList<plist::Dictionary>& newPayloads) {
    QStringList found;
    for (const auto& match : PayloadMatcher::match(oldPayloads, newPayloads))
        found << QStringLiteral("%1-%2")
                     .arg(match.oldIndex ? *match.oldIndex + 1 : 0)
                     .arg(match.newIndex ? *match.newIndex + 1 : 0);
    return found;
}

} // namespace

// Only the items out of the longest run that keeps its order count as moved;
// of two swapped, the later one moved.
TEST(ArrayItemMatcherTest, ReportsTheFewestMoves) {
    const struct {
        QStringList oldItems, newItems, expected;
    } cases[] = {
        {{"a", "b", "c", "d"}, {"d", "a", "b", "c"}, {"4>1"}},
        {{"a", "b", "c", "d"}, {"a", "c", "b", "d"}, {"3>2"}},
        {{"a", "b"}, {"b", "c"}, {"+2", "-1"}},
        {{"a", "a", "b"}, {"a", "b", "a"}, {"3>2"}},
        {{}, {"a"}, {"+1"}},
    };
    for (const auto& test : cases)
        EXPECT_EQ(moves(strings(test.oldItems), strings(test.newItems)), test.expected)
            << test.oldItems.join(',').toStdString();
}

TEST(ArrayItemMatcherTest, DictionaryItemsPairByAnIdentityOrElseByPlace) {
    const auto app = [](const QString& bundle, const QString& name) {
        return plist::Value(plist::Dictionary{{"bundleID", bundle}, {"Name", name}});
    };
    EXPECT_EQ(moves({app("x", "X"), app("y", "Y")}, {app("y", "Y"), app("x", "X")}), QStringList{"2>1"});
    EXPECT_EQ(ArrayItemMatcher::labels({app("x", "X"), app("y", "Y")}), (QStringList{"x", "y"}));
    // "Name" repeats, so nothing names the items: they pair by place.
    const plist::Array unnamed{plist::Value(plist::Dictionary{{"Name", "n"}}),
                               plist::Value(plist::Dictionary{{"Name", "n"}})};
    EXPECT_EQ(moves(unnamed, plist::Array{unnamed.first()}), QStringList{"-2"});
    EXPECT_EQ(ArrayItemMatcher::labels(unnamed), (QStringList{"", ""}));
}

TEST(PayloadMatcherTest, PairsByIdentifierThenNameThenLikeness) {
    const plist::Dictionary wifi =
        payload("wifi", "a.1111", "Office", {{"SSID", "office"}, {"Hidden", true}});
    const plist::Dictionary home = payload("wifi", "b", "Home", {{"SSID", "home"}, {"Hidden", false}});
    plist::Dictionary wifiWithUUID = wifi;
    wifiWithUUID.insert("PayloadUUID", "1111");
    plist::Dictionary wifiNewUUID =
        payload("wifi", "a.2222", "Renamed", {{"SSID", "office"}, {"Hidden", true}});
    wifiNewUUID.insert("PayloadUUID", "2222");

    // The identifier less its own UUID pairs, whatever the order and name.
    EXPECT_EQ(pairs({wifiWithUUID, home}, {home, wifiNewUUID}), (QStringList{"2-1", "1-2"}));
    // The same display name pairs when the identifier changed.
    EXPECT_EQ(pairs({home}, {payload("wifi", "c", "Home")}), (QStringList{"1-1"}));
    // The most alike pair first; unlike ones are removed and added.
    const plist::Dictionary officeAgain =
        payload("wifi", "d", "Other", {{"SSID", "office"}, {"Hidden", true}});
    const plist::Dictionary stranger = payload("wifi", "e", "New", {{"SSID", "cafe"}, {"Hidden", true}});
    const plist::Dictionary other = payload("wifi", "f", "Far", {{"SSID", "far"}});
    EXPECT_EQ(pairs({wifi, home}, {stranger, officeAgain, other}), (QStringList{"0-1", "1-2", "0-3", "2-0"}));
    // The last of a type on both sides is a changed payload, however unlike.
    EXPECT_EQ(pairs({home}, {stranger}), (QStringList{"1-1"}));
    EXPECT_EQ(pairs({home}, {payload("vpn", "b", "Home")}), (QStringList{"0-1", "1-0"}));
}

// Keys and payloads no manifest knows are compared with titles made from
// their names; numbers of one value are the same in effect.
TEST(ProfileComparisonTest, ComparesWhatNoManifestDescribes) {
    const auto root = [](const plist::Dictionary& unknown) {
        return plist::Dictionary{{"PayloadType", "Configuration"},
                                 {"PayloadContent", plist::Array{plist::Value(unknown)}}};
    };
    const plist::Dictionary oldProfile =
        root(payload("com.example.unknown", "u", "Mystery", {{"LegacyMode", true}, {"Retries", 3}}));
    const plist::Dictionary newProfile =
        root(payload("com.example.unknown", "u", "Mystery", {{"LegacyMode", false}, {"Retries", 3.0}}));
    const auto differences = ProfileComparison({}).compare(oldProfile, newProfile);
    ASSERT_EQ(differences.size(), 2);
    EXPECT_EQ(differences[0].kind, Kind::payloadChanged);
    EXPECT_EQ(differences[0].payloadTitle, "com.example.unknown");
    EXPECT_EQ(ProfileDifferenceText::line(differences[1]), "~ Legacy Mode (LegacyMode): true → false");
    EXPECT_TRUE(ProfileComparison({}).compare(oldProfile, oldProfile).isEmpty());
}
