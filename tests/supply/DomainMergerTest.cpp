#include "StandardizationFixtures.h"

#include "supply/DomainMerger.h"

#include <QFileInfo>

#include <gtest/gtest.h>

using namespace quorlin;
using test::keyArray;
using test::manifestKey;
using test::stringArray;

namespace {

const QString platformsKey = QStringLiteral("pfm_platforms");
const QString subkeysKey = QStringLiteral("pfm_subkeys");

plist::Dictionary manifestFor(const char* platform, const plist::Array& subkeys,
                              const plist::Dictionary& extra = {}) {
    plist::Dictionary manifest = extra;
    manifest.insert(QStringLiteral("pfm_domain"), "com.example.merge");
    manifest.insert(platformsKey, stringArray({platform}));
    manifest.insert(subkeysKey, subkeys);
    return manifest;
}

// Every manifest of a case folder but the expected one, in file-name order,
// which is the order the pipeline sorts them in for these cases.
TEST(DomainMergerTest, MergesEveryGoldenCase) {
    const QStringList cases = test::caseFolders(QStringLiteral("merge"));
    ASSERT_FALSE(cases.isEmpty());
    for (const QString& folder : cases) {
        SCOPED_TRACE(folder.toStdString());
        QList<plist::Dictionary> manifests;
        for (const QString& file : test::filesBelow(folder, {QStringLiteral(".plist")}))
            if (QFileInfo(file).fileName() != QStringLiteral("expected.plist"))
                manifests << test::readDictionary(file);
        ASSERT_GE(manifests.size(), 2);
        EXPECT_EQ(DomainMerger::merge(manifests),
                  test::readDictionary(QDir(folder).filePath(QStringLiteral("expected.plist"))));
    }
}

TEST(DomainMergerTest, ExcludedPlatformsSubtractWhileDeclaredOnesIntersect) {
    plist::Dictionary key =
        manifestKey("Key", "string", {{QStringLiteral("pfm_n_platforms"), stringArray({"tvOS"})}});
    EXPECT_EQ(DomainMerger::applyPlatforms(key, {"iOS", "tvOS"}), DomainMerger::PlatformSet({"iOS"}));
    EXPECT_FALSE(key.contains(QStringLiteral("pfm_n_platforms")));
    EXPECT_EQ(key.value(platformsKey), plist::Value(stringArray({"iOS"})));

    plist::Dictionary declared =
        manifestKey("Key", "string", {{platformsKey, stringArray({"macOS", "tvOS"})}});
    EXPECT_EQ(DomainMerger::applyPlatforms(declared, {"iOS", "tvOS"}), DomainMerger::PlatformSet({"tvOS"}));
    EXPECT_EQ(declared.value(platformsKey), plist::Value(stringArray({"tvOS"})));
}

TEST(DomainMergerTest, ChildrenInheritTheirParentsOwnPlatforms) {
    plist::Dictionary child = manifestKey("Child", "string");
    plist::Array keys = keyArray({manifestKey(
        "Parent", "dictionary",
        {{QStringLiteral("pfm_n_platforms"), stringArray({"iOS"})}, {subkeysKey, keyArray({child})}})});
    DomainMerger::applyPlatforms(keys, {"iOS", "macOS"});
    const plist::Dictionary parent = *keys.first().dictionary();
    EXPECT_EQ(parent.value(platformsKey), plist::Value(stringArray({"macOS"})));
    EXPECT_EQ(test::subkeyNamed(parent, QStringLiteral("Child")).value(platformsKey),
              plist::Value(stringArray({"macOS"})));
}

TEST(DomainMergerTest, PruningKeepsOnlyRestrictionsRelativeToTheParent) {
    plist::Array keys = keyArray({manifestKey(
        "Mac", "dictionary",
        {{platformsKey, stringArray({"macOS"})},
         {subkeysKey, keyArray({manifestKey("Same", "string", {{platformsKey, stringArray({"macOS"})}}),
                                manifestKey("None", "string", {{platformsKey, plist::Array{}}})})}})});
    DomainMerger::prunePlatforms(keys, {"iOS", "macOS"});
    const plist::Dictionary mac = *keys.first().dictionary();
    EXPECT_EQ(mac.value(platformsKey), plist::Value(stringArray({"macOS"})));
    EXPECT_FALSE(test::subkeyNamed(mac, QStringLiteral("Same")).contains(platformsKey));
    EXPECT_EQ(test::subkeyNamed(mac, QStringLiteral("None")).value(platformsKey),
              plist::Value(plist::Array{}));
}

TEST(DomainMergerTest, HostilyDeepKeyTreesAreMergedNearTheTopAndKeptWhole) {
    const plist::Array deep = test::deeplyNestedKeys(400);
    const auto merged = DomainMerger::merge({manifestFor("macOS", deep), manifestFor("iOS", deep)});
    // Near the top both manifests' platforms meet and the list is pruned
    // away; far below the depth limit the tree is still there, unmerged.
    const plist::Dictionary* key = merged.array(subkeysKey)->first().dictionary();
    for (int depth = 0; depth < 4 * DomainMerger::maximumDepth && key; ++depth) {
        if (depth == 10) {
            EXPECT_FALSE(key->contains(platformsKey));
        }
        const plist::Array* children = key->array(subkeysKey);
        key = children && !children->isEmpty() ? children->first().dictionary() : nullptr;
    }
    ASSERT_TRUE(key);
    EXPECT_FALSE(key->contains(platformsKey));
}

} // namespace
