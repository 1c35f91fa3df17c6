#include "StandardizationFixtures.h"

#include "supply/ThirdPartyManifest.h"
#include "supply/UniformTypeExtensions.h"

#include <gtest/gtest.h>

using namespace quorlin;
using test::keyArray;
using test::manifestKey;
using test::stringArray;

namespace {

const QString subkeysKey = QStringLiteral("pfm_subkeys");
const QString platformsKey = QStringLiteral("pfm_quorlin_platforms");

// The one key convertKeys makes of `key`.
plist::Dictionary convertedKey(const plist::Dictionary& key,
                               const QStringList& platforms = {"ios", "macos"}) {
    const plist::Array converted = ThirdPartyManifest::convertKeys(keyArray({key}), platforms);
    return converted.size() == 1 && converted.first().isDictionary() ? *converted.first().dictionary()
                                                                     : plist::Dictionary{};
}

TEST(ThirdPartyManifestTest, ConvertsEveryGoldenCase) {
    const QStringList cases = test::caseFolders(QStringLiteral("convert"));
    ASSERT_FALSE(cases.isEmpty());
    for (const QString& folder : cases) {
        SCOPED_TRACE(folder.toStdString());
        const QDir dir(folder);
        const plist::Dictionary input = test::readDictionary(dir.filePath("input.plist"));
        ASSERT_FALSE(input.isEmpty());
        EXPECT_TRUE(ThirdPartyManifest::isThirdParty(input));
        EXPECT_EQ(ThirdPartyManifest::convert(input), test::readDictionary(dir.filePath("expected.plist")));
    }
}

TEST(ThirdPartyManifestTest, OnlyThePresenceOfADetectionKeyCounts) {
    EXPECT_TRUE(ThirdPartyManifest::isThirdParty({{"pfm_unique", false}}));
    EXPECT_TRUE(ThirdPartyManifest::isThirdParty({{"pfm_platforms", "not even an array"}}));
    EXPECT_FALSE(
        ThirdPartyManifest::isThirdParty({{"pfm_domain", "Configuration"}, {"pfm_quorlin_platforms", 1}}));
}

TEST(ThirdPartyManifestTest, TheConfigurationDomainBecomesTheGeneralPayload) {
    EXPECT_EQ(ThirdPartyManifest::convert({{"pfm_domain", "Configuration"}}).string("pfm_domain"), QString());
    EXPECT_EQ(ThirdPartyManifest::convert({{"pfm_domain", "configuration"}}).string("pfm_domain"),
              "configuration");
    EXPECT_FALSE(ThirdPartyManifest::convert({{"pfm_domain", 3}}).contains("pfm_domain"));
}

TEST(ThirdPartyManifestTest, RootValuesOfTheWrongClassAreDroppedAndUnknownKeysWithThem) {
    const plist::Dictionary converted = ThirdPartyManifest::convert({
        {"pfm_last_modified", "2024-01-01"},
        {"pfm_note", 5},
        {"pfm_documentation_url", plist::Array{}},
        {"pfm_format_version", "two"},
        {"pfm_supervised", "yes"},
        {"pfm_app_url", "https://example.com"},
        {"pfm_quorlin_category", "system"},
    });
    const plist::Dictionary expected{{"pfm_format_version", 1},
                                     {"pfm_quorlin_supervision_required", "yes"},
                                     {"pfm_quorlin_category", "system"}};
    EXPECT_EQ(converted, expected);
}

TEST(ThirdPartyManifestTest, NegativePlatformsKeepWhatTheyNameAndNarrowLaterSiblingsChildren) {
    const plist::Dictionary child =
        manifestKey("Child", "string", {{"pfm_n_platforms", stringArray({"iOS", "tvOS"})}});
    const plist::Array converted = ThirdPartyManifest::convertKeys(
        keyArray({
            manifestKey(
                "Own", "string",
                {{"pfm_platforms", stringArray({"tvOS"})}, {"pfm_n_platforms", stringArray({"iOS"})}}),
            manifestKey("Narrow", "string", {{"pfm_n_platforms", plist::Array{"IOS", "TVOS", "watchos", 4}}}),
            manifestKey("Parent", "dictionary", {{subkeysKey, keyArray({child})}}),
        }),
        ThirdPartyManifest::defaultPlatforms());
    ASSERT_EQ(converted.size(), 3);
    EXPECT_EQ(converted[0].dictionary()->value(platformsKey), plist::Value(stringArray({"tvOS"})));
    EXPECT_EQ(converted[1].dictionary()->value(platformsKey),
              plist::Value(stringArray({"ios", "tvos", "watchos"})));
    EXPECT_FALSE(converted[2].dictionary()->contains(platformsKey));
    EXPECT_EQ(test::subkeyNamed(*converted[2].dictionary(), "Child").value(platformsKey),
              plist::Value(stringArray({"ios", "tvos"})));
}

TEST(ThirdPartyManifestTest, FileTypesMixExtensionsAndUniformTypes) {
    const auto extensions = [](const plist::Array& types) {
        return ThirdPartyManifest::allowedFileExtensions(types);
    };
    EXPECT_EQ(extensions({"mobileconfig", "com.rsa.pkcs-12", 7, "public.json", "public.unix-executable",
                          "org.example.x"}),
              QStringList({"mobileconfig", "p12", "pfx", "json"}));
    EXPECT_EQ(extensions({"public.image"}), UniformTypeExtensions::imageExtensions());
    EXPECT_EQ(UniformTypeExtensions::imageExtensions().size(), 23);

    const plist::Dictionary empty =
        convertedKey(manifestKey("K", "data", {{"pfm_allowed_file_types", stringArray({"public.folder"})}}));
    EXPECT_FALSE(empty.contains("pfm_quorlin_allowed_file_extensions"));
    const plist::Dictionary some = convertedKey(
        manifestKey("K", "data", {{"pfm_allowed_file_types", stringArray({"public.png", "com.adobe.pdf"})}}));
    EXPECT_EQ(some.value("pfm_quorlin_allowed_file_extensions"), plist::Value(stringArray({"png", "pdf"})));
}

TEST(ThirdPartyManifestTest, UniformTypeTableCoversTheTypesAdministratorsMeet) {
    for (const char* type :
         {"public.jpeg", "public.png", "public.tiff", "com.compuserve.gif", "public.heic",
          "public.plain-text", "public.json", "public.xml", "com.adobe.pdf", "public.x509-certificate",
          "com.rsa.pkcs-12", "public.zip-archive", "com.apple.property-list", "com.apple.application-bundle",
          "public.shell-script"}) {
        SCOPED_TRACE(type);
        const auto declared = UniformTypeExtensions::extensions(type);
        ASSERT_TRUE(declared);
        EXPECT_FALSE(declared->isEmpty());
        for (const QString& extension : *declared)
            EXPECT_FALSE(extension.contains('.') || extension.isEmpty());
    }
    EXPECT_EQ(UniformTypeExtensions::extensions("public.folder"), QStringList());
    EXPECT_EQ(UniformTypeExtensions::extensions("public.image"), std::nullopt);
    EXPECT_EQ(UniformTypeExtensions::extensions("com.apple.property-list"), QStringList({"plist"}));
}

TEST(ThirdPartyManifestTest, SegmentOrderComesFromTheTitlesOrElseSortedNames) {
    const plist::Dictionary segments{
        {"Zulu", stringArray({"z"})}, {"Alpha", stringArray({"a", "b"})}, {"Odd", "x"}};
    const QList<plist::Dictionary> keys{
        manifestKey("Titled", "string",
                    {{"pfm_segments", segments},
                     {"pfm_range_list_titles", stringArray({"Zulu", "Odd", "Alpha", "Missing"})}}),
        manifestKey(nullptr, "string", {{"pfm_segments", segments}}),
        manifestKey("NotSegments", "string", {{"pfm_segments", stringArray({"a"})}}),
    };
    const QList<SegmentGroup> expected{{"Zulu", {"z"}, "Titled"},
                                       {"Alpha", {"a", "b"}, "Titled"},
                                       {"Alpha", {"a", "b"}, ""},
                                       {"Zulu", {"z"}, ""}};
    EXPECT_EQ(ThirdPartyManifest::segmentGroups(keys), expected);
}

TEST(ThirdPartyManifestTest, AControlShownInAGroupNestsItsGroupsAfterThatGroup) {
    const QList<SegmentGroup> groups{
        {"Basic", {"a", "Mode"}, "Top"}, {"Advanced", {"b"}, "Top"}, {"Fast", {"f"}, "Mode"},
        {"Slow", {"s"}, "Mode"},         {"Empty", {}, "Top"},
    };
    const QList<SegmentGroup> expected{
        {"Basic", {"a"}, "Top"},
        {"Basic Fast", {"f"}, "Mode"},
        {"Basic Slow", {"s"}, "Mode"},
        {"Advanced", {"b"}, "Top"},
    };
    EXPECT_EQ(ThirdPartyManifest::resolveSegmentGroups(groups), expected);
}

TEST(ThirdPartyManifestTest, HostilyDeepKeyTreesStopAtTheDepthLimit) {
    const plist::Array converted = ThirdPartyManifest::convertKeys(test::deeplyNestedKeys(400), {"ios"});
    int depth = 0;
    for (const plist::Value* level = converted.isEmpty() ? nullptr : &converted.first(); level; ++depth) {
        const plist::Array* children = level->dictionary()->array(subkeysKey);
        level = children && !children->isEmpty() ? &children->first() : nullptr;
    }
    EXPECT_EQ(depth, ThirdPartyManifest::maximumDepth);
}

} // namespace
