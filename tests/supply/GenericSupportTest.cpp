#include "SupplyFixtures.h"

#include "supply/GenericSupport.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace quorlin;
using test::keyArray;
using test::manifestKey;

namespace {

const QString subkeysKey = QStringLiteral("pfm_subkeys");
const QString visibleKey = QStringLiteral("pfm_quorlin_user_visible");
const QString placeholderKey = QStringLiteral("pfm_quorlin_value_placeholder");

plist::Dictionary manifestWith(const QString& domain, const plist::Array& subkeys) {
    return {{QStringLiteral("pfm_domain"), domain}, {subkeysKey, subkeys}};
}

TEST(GenericSupportTest, SortOrderEntriesSharePositionsAndLaterDuplicatesWin) {
    EXPECT_EQ(GenericSupport::processSortOrder(std::nullopt), std::nullopt);
    EXPECT_EQ(GenericSupport::processSortOrder(QStringList{}), GenericSupport::SortOrder{});
    const auto order = GenericSupport::processSortOrder(
        QStringList{"com.a, com.b", "", " com.c\n", "com.a", "com.d,\tcom.e\r\n"});
    const GenericSupport::SortOrder expected{{"com.a", 3}, {"com.b", 0}, {"", 1},
                                             {"com.c", 2}, {"com.d", 4}, {"com.e", 4}};
    EXPECT_EQ(order, expected);
}

TEST(GenericSupportTest, SortPriorityReachesTheGeneralManifestThroughTheEmptyEntry) {
    const GenericSupport support(std::nullopt, false, false, QStringList{"com.first", ""});
    plist::Dictionary general = manifestWith(QString(), {});
    plist::Dictionary unlisted = manifestWith("com.unlisted", {});
    support.apply(general);
    support.apply(unlisted);
    EXPECT_EQ(general.integer(QStringLiteral("pfm_quorlin_sort_priority")), 1);
    EXPECT_FALSE(unlisted.contains(QStringLiteral("pfm_quorlin_sort_priority")));
}

TEST(GenericSupportTest, HidesThePayloadsCommonKeysOnTheFirstLevelOfEveryDomainButTheGeneralOne) {
    const GenericSupport support(std::nullopt, false, true, std::nullopt);
    const plist::Array keys = keyArray({
        manifestKey("PayloadUUID", "string"),
        manifestKey("PayloadDisplayName", "string", {{visibleKey, true}}),
        manifestKey("PayloadType", "string", {{visibleKey, 1}}),
        manifestKey("Setting", "dictionary",
                    {{subkeysKey, keyArray({manifestKey("PayloadVersion", "integer")})}}),
    });
    plist::Dictionary manifest = manifestWith("com.example", keys);
    support.apply(manifest);
    EXPECT_EQ(test::subkeyNamed(manifest, "PayloadUUID").boolean(visibleKey), false);
    EXPECT_EQ(test::subkeyNamed(manifest, "PayloadDisplayName").boolean(visibleKey), true);
    EXPECT_EQ(test::subkeyNamed(manifest, "PayloadType").boolean(visibleKey), false)
        << "only a boolean counts";
    EXPECT_FALSE(
        test::subkeyNamed(test::subkeyNamed(manifest, "Setting"), "PayloadVersion").contains(visibleKey));

    plist::Dictionary general = manifestWith(QString(), keys);
    support.apply(general);
    EXPECT_EQ(general, manifestWith(QString(), keys));

    plist::Dictionary untouched = manifestWith("com.example", keys);
    GenericSupport().apply(untouched);
    EXPECT_EQ(untouched, manifestWith("com.example", keys));
}

TEST(GenericSupportTest, ScrubsTheAuthoringToolsPlaceholdersAtEveryDepthWhenAsked) {
    const plist::Array keys = keyArray({
        manifestKey("Bundle", "string", {{placeholderKey, "com.placeholder.ManifestAuthorTool"}}),
        manifestKey(
            "Team", "dictionary",
            {{subkeysKey, keyArray({manifestKey("Identifier", "string", {{placeholderKey, "Z9PLCHLDR0"}}),
                                    manifestKey("Other", "string", {{placeholderKey, "Z9PLCHLDR"}})})}}),
    });
    plist::Dictionary manifest = manifestWith("com.example", keys);
    GenericSupport(std::nullopt, true, false, std::nullopt).apply(manifest);
    EXPECT_EQ(test::subkeyNamed(manifest, "Bundle").string(placeholderKey), "com.domainname.applicationname");
    const plist::Dictionary team = test::subkeyNamed(manifest, "Team");
    EXPECT_EQ(test::subkeyNamed(team, "Identifier").string(placeholderKey), "A1B2C3D4E5");
    EXPECT_EQ(test::subkeyNamed(team, "Other").string(placeholderKey), "Z9PLCHLDR");

    plist::Dictionary kept = manifestWith("com.example", keys);
    GenericSupport(std::nullopt, false, false, std::nullopt).apply(kept);
    EXPECT_EQ(kept, manifestWith("com.example", keys));
}

TEST(GenericSupportTest, AManifestWithoutAStringDomainIsLeftAlone) {
    const GenericSupport support(std::nullopt, true, true, QStringList{""});
    plist::Dictionary manifest{{QStringLiteral("pfm_domain"), 7},
                               {subkeysKey, keyArray({manifestKey("PayloadUUID", "string")})}};
    const plist::Dictionary before = manifest;
    support.apply(manifest);
    EXPECT_EQ(manifest, before);
}

TEST(GenericSupportTest, IconsComeFromTheFirstFolderThatHasOne) {
    QTemporaryDir folder;
    ASSERT_TRUE(folder.isValid());
    const QByteArray red = test::pngBytes(Qt::red);
    const QByteArray blue = test::pngBytes(Qt::blue);
    ASSERT_TRUE(test::writeBytes(folder.filePath("b/com.example.png"), red));
    ASSERT_TRUE(test::writeBytes(folder.filePath("c/com.example.png"), blue));
    ASSERT_TRUE(
        test::writeBytes(folder.filePath("c/" + GenericSupport::generalManifestIconName() + ".png"), blue));
    const GenericSupport support({{folder.filePath("a"), folder.filePath("b"), folder.filePath("c")}}, false,
                                 false, std::nullopt);

    plist::Dictionary manifest = manifestWith("com.example", {});
    support.apply(manifest);
    EXPECT_EQ(manifest.data(QStringLiteral("pfm_quorlin_icon")), red);
    EXPECT_EQ(support.iconData(QString()), blue);
    EXPECT_EQ(support.iconData("com.missing"), std::nullopt);
    EXPECT_EQ(GenericSupport().iconData("com.example"), std::nullopt);
}

} // namespace
