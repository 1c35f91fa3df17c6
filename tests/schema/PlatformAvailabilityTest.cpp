#include "schema/PFMSupportedPlatforms.h"
#include "schema/PFMXSupportedOSes.h"
#include "schema/SupportedPlatforms.h"
#include "support/DataTrees.h"

#include <gtest/gtest.h>

using namespace quorlin;
using plist::Array;
using plist::Dictionary;
using Model = PFMSupportedPlatforms::Model;
using Stage = PFMSupportedPlatforms::LifeCycleStage;
using Models = PFMSupportedPlatforms::Models;
using StageVersions = PFMSupportedPlatforms::StageVersions;
using Mode = PFMXSharedIPad::Mode;
using Scope = PFMXSharedIPad::Scope;

namespace {

PFMXSupportedOSes decoded(const Dictionary& dictionary) {
    const auto result = PFMXSupportedOSes::decode(dictionary);
    EXPECT_TRUE(result) << (result ? std::string() : result.error().codingPath.toStdString());
    return result ? *result : PFMXSupportedOSes();
}

SupportedPlatforms platformsOf(std::initializer_list<SupportedPlatform> platforms) {
    return SupportedPlatforms(std::set<SupportedPlatform>(platforms));
}

} // namespace

TEST(PlatformWords, HaveTheirRawWordsAndDisplayNames) {
    const std::vector<std::tuple<Model, const char*, const char*>> models{
        {Model::iOS, "ios", "iOS"},
        {Model::macOS, "macos", "macOS"},
        {Model::tvOS, "tvos", "tvOS"},
        {Model::watchOS, "watchos", "watchOS"}};
    for (const auto& [model, raw, display] : models) {
        EXPECT_EQ(PFMSupportedPlatforms::rawValue(model), QString::fromUtf8(raw));
        EXPECT_EQ(PFMSupportedPlatforms::displayName(model), QString::fromUtf8(display));
        EXPECT_EQ(PFMSupportedPlatforms::modelFromRawValue(QString::fromUtf8(raw)), model);
        EXPECT_EQ(PFMXSupportedOSes::codingKey(model), QString::fromUtf8(display));
    }
    EXPECT_FALSE(PFMSupportedPlatforms::modelFromRawValue("iOS"));
    EXPECT_EQ(PFMSupportedPlatforms::rawValue(Stage::introduction), QStringLiteral("introduction"));
    EXPECT_EQ(PFMSupportedPlatforms::rawValue(Stage::deprecation), QStringLiteral("deprecation"));
    EXPECT_EQ(PFMSupportedPlatforms::rawValue(Stage::removal), QStringLiteral("removal"));

    // The modes and scopes are read by their words when decoding; case counts.
    EXPECT_FALSE(PFMXSharedIPad::modeFromRawValue("Allowed"));
    EXPECT_FALSE(PFMXSharedIPad::scopeFromRawValue("device"));
}

TEST(OlderPlatformKeys, PlatformListIsMatchedAfterLowerCasing) {
    EXPECT_EQ(PFMSupportedPlatforms::readPlatformList(
                  Dictionary{{"pfm_quorlin_platforms", Array{"iOS", "MACOS", 3, "visionOS", "tvos"}}}),
              (Models{Model::iOS, Model::macOS, Model::tvOS}));
    EXPECT_FALSE(
        PFMSupportedPlatforms::readPlatformList(Dictionary{{"pfm_quorlin_platforms", Array{"android", 1}}}));
    EXPECT_FALSE(PFMSupportedPlatforms::readPlatformList(Dictionary{{"pfm_quorlin_platforms", Array{}}}));
    EXPECT_FALSE(PFMSupportedPlatforms::readPlatformList(Dictionary{{"pfm_quorlin_platforms", "ios"}}));
    EXPECT_FALSE(PFMSupportedPlatforms::readPlatformList(Dictionary{}));
}

TEST(OlderPlatformKeys, LifeCycleVersionsComeFromTwelveStringKeys) {
    const auto versions =
        PFMSupportedPlatforms::readLifeCycleVersions(Dictionary{{"pfm_quorlin_ios_introduction", "5.0"},
                                                                {"pfm_quorlin_ios_deprecation", "13.0"},
                                                                {"pfm_quorlin_ios_removal", "16.0"},
                                                                {"pfm_quorlin_macos_removal", "14.0"},
                                                                {"pfm_quorlin_tvos_introduction", 9},
                                                                {"pfm_quorlin_watchos_deprecation", "8.0"},
                                                                {"pfm_quorlin_iOS_introduction", "1.0"}});
    ASSERT_TRUE(versions);
    const PFMSupportedPlatforms::LifeCycleVersions expected{
        {Model::iOS, {{Stage::introduction, "5.0"}, {Stage::deprecation, "13.0"}, {Stage::removal, "16.0"}}},
        {Model::macOS, {{Stage::removal, "14.0"}}},
        {Model::watchOS, {{Stage::deprecation, "8.0"}}}};
    EXPECT_EQ(*versions, expected);
    EXPECT_FALSE(
        PFMSupportedPlatforms::readLifeCycleVersions(Dictionary{{"pfm_quorlin_tvos_introduction", 9}}));
}

TEST(ExtendedFormatDecoding, ReadsEveryFieldAndIgnoresUnknownPlatforms) {
    const auto oses = decoded(
        test::dataDictionary(QStringLiteral("schema/trees.plist"), "supported OSes with every field"));

    const PFMXSupportedOS* iOS = oses.supportedOS(Model::iOS);
    ASSERT_TRUE(iOS);
    EXPECT_EQ(iOS->introduced, QStringLiteral("4.0"));
    EXPECT_EQ(iOS->deprecated, QStringLiteral("15.0"));
    EXPECT_EQ(iOS->removed, QStringLiteral("17.0"));
    EXPECT_EQ(iOS->deviceChannel, true);
    EXPECT_EQ(iOS->userChannel, false);
    EXPECT_EQ(iOS->supervised, true);
    EXPECT_EQ(iOS->requiresDEP, false);
    EXPECT_EQ(iOS->userApprovedMDM, true);
    EXPECT_EQ(iOS->allowManualInstall, true);
    ASSERT_TRUE(iOS->sharedIPad);
    EXPECT_EQ(iOS->sharedIPad->mode, Mode::required);
    EXPECT_EQ(iOS->sharedIPad->deviceChannel, true);
    EXPECT_EQ(iOS->sharedIPad->userChannel, false);
    EXPECT_EQ(iOS->sharedIPad->allowedScopes, (QList<Scope>{Scope::system, Scope::user, Scope::local}));
    ASSERT_TRUE(iOS->userEnrollment);
    EXPECT_EQ(iOS->userEnrollment->mode, Mode::forbidden);
    EXPECT_EQ(iOS->userEnrollment->behavior, QStringLiteral("skip"));
    EXPECT_EQ(iOS->alwaysSkippable, false);
    EXPECT_EQ(iOS->multiple, true);

    const PFMXSupportedOS* macOS = oses.supportedOS(Model::macOS);
    ASSERT_TRUE(macOS);
    EXPECT_EQ(*macOS, PFMXSupportedOS{});
    EXPECT_FALSE(macOS->stageVersions());
    EXPECT_FALSE(oses.supportedOS(Model::tvOS));
    EXPECT_EQ(oses.storage().size(), 2u);
}

TEST(ExtendedFormatDecoding, AnyValueOfTheWrongTypeFailsTheWholeDictionary) {
    for (const Dictionary& c :
         test::dataCases(QStringLiteral("schema/supported-oses-of-the-wrong-type.plist"))) {
        const QString path = c.string(QStringLiteral("failing path")).value_or(QString());
        const auto result = PFMXSupportedOSes::decode(c.dictionary(QStringLiteral("supported OSes"))
                                                          ? *c.dictionary(QStringLiteral("supported OSes"))
                                                          : Dictionary{});
        ASSERT_FALSE(result) << path.toStdString();
        EXPECT_EQ(result.error().codingPath, path);
        EXPECT_FALSE(result.error().reason.isEmpty());
    }
    EXPECT_TRUE(PFMXSupportedOSes::decode(Dictionary{}));
}

TEST(ExtendedFormatDecoding, ConvertsVersionsToStagesAndRecognisesNotAvailable) {
    PFMXSupportedOS os;
    os.introduced = "n/a";
    EXPECT_TRUE(os.isNeverIntroduced());
    os.introduced = "11.0";
    os.removed = "14.0";
    EXPECT_FALSE(os.isNeverIntroduced());
    EXPECT_EQ(os.stageVersions(), (StageVersions{{Stage::introduction, "11.0"}, {Stage::removal, "14.0"}}));
}

TEST(SupportedPlatformsMaking, OlderKeysGiveOnePlatformPerModel) {
    EXPECT_EQ(SupportedPlatforms::make(std::nullopt, std::nullopt),
              platformsOf({{Model::iOS, std::nullopt},
                           {Model::macOS, std::nullopt},
                           {Model::tvOS, std::nullopt},
                           {Model::watchOS, std::nullopt}}));
    const PFMSupportedPlatforms::LifeCycleVersions versions{{Model::iOS, {{Stage::introduction, "9.0"}}},
                                                            {Model::macOS, {{Stage::introduction, "10.11"}}}};
    EXPECT_EQ(SupportedPlatforms::make(Models{Model::iOS, Model::tvOS}, versions),
              platformsOf(
                  {{Model::iOS, StageVersions{{Stage::introduction, "9.0"}}}, {Model::tvOS, std::nullopt}}));
}

TEST(SupportedPlatformsMaking, ExtendedFormatLeavesOutPlatformsNeverIntroduced) {
    const auto oses = decoded(Dictionary{{"iOS", Dictionary{{"pfmx_introduced", "12.0"}}},
                                         {"macOS", Dictionary{{"pfmx_introduced", "n/a"}}},
                                         {"watchOS", Dictionary{{"pfmx_supervised", true}}}});
    EXPECT_EQ(SupportedPlatforms::fromSupportedOSes(oses),
              platformsOf({{Model::iOS, StageVersions{{Stage::introduction, "12.0"}}},
                           {Model::watchOS, std::nullopt}}));
    EXPECT_TRUE(SupportedPlatforms::fromSupportedOSes(PFMXSupportedOSes()).platforms().empty());
}

TEST(SupportedPlatformsCombining, ChildNarrowsItsParentAndWinsOnSharedStages) {
    const SupportedPlatforms parent =
        platformsOf({{Model::iOS, StageVersions{{Stage::introduction, "13.0"}, {Stage::deprecation, "16.0"}}},
                     {Model::macOS, StageVersions{{Stage::introduction, "10.15"}}},
                     {Model::tvOS, std::nullopt}});
    const auto child = decoded(Dictionary{{"iOS", Dictionary{{"pfmx_introduced", "14.0"}}},
                                          {"macOS", Dictionary{{"pfmx_introduced", "n/a"}}},
                                          {"watchOS", Dictionary{{"pfmx_introduced", "7.0"}}}});
    EXPECT_EQ(
        SupportedPlatforms::combinedWithParent(child, parent),
        platformsOf({{Model::iOS, StageVersions{{Stage::introduction, "14.0"}, {Stage::deprecation, "16.0"}}},
                     {Model::tvOS, std::nullopt}}));

    const auto removalOnly =
        decoded(Dictionary{{"tvOS", Dictionary{{"pfmx_removed", "17.0"}}}, {"macOS", Dictionary{}}});
    EXPECT_EQ(
        SupportedPlatforms::combinedWithParent(removalOnly, parent),
        platformsOf({{Model::iOS, StageVersions{{Stage::introduction, "13.0"}, {Stage::deprecation, "16.0"}}},
                     {Model::macOS, StageVersions{{Stage::introduction, "10.15"}}},
                     {Model::tvOS, StageVersions{{Stage::removal, "17.0"}}}}));
    EXPECT_EQ(SupportedPlatforms::combinedWithParent(PFMXSupportedOSes(), parent), parent);
}

TEST(SupportedPlatformsCombining, OlderPlatformListRestrictsAndVersionsAloneRefine) {
    const SupportedPlatforms parent = platformsOf({{Model::iOS, StageVersions{{Stage::introduction, "13.0"}}},
                                                   {Model::macOS, std::nullopt},
                                                   {Model::tvOS, std::nullopt}});
    const PFMSupportedPlatforms::LifeCycleVersions versions{{Model::macOS, {{Stage::deprecation, "12.0"}}},
                                                            {Model::watchOS, {{Stage::introduction, "6.0"}}}};
    EXPECT_EQ(
        SupportedPlatforms::combinedWithParent(Models{Model::iOS, Model::watchOS}, std::nullopt, parent),
        platformsOf({{Model::iOS, StageVersions{{Stage::introduction, "13.0"}}}}));
    EXPECT_EQ(SupportedPlatforms::combinedWithParent(std::nullopt, versions, parent),
              platformsOf({{Model::iOS, StageVersions{{Stage::introduction, "13.0"}}},
                           {Model::macOS, StageVersions{{Stage::deprecation, "12.0"}}},
                           {Model::tvOS, std::nullopt}}));
    EXPECT_EQ(SupportedPlatforms::combinedWithParent(Models{Model::macOS}, versions, parent),
              platformsOf({{Model::macOS, StageVersions{{Stage::deprecation, "12.0"}}}}));
    EXPECT_EQ(SupportedPlatforms::combinedWithParent(std::nullopt, std::nullopt, parent), parent);
}

TEST(SupportedPlatformsQueries, CompareDottedVersionsAndTreatAnEmptyTargetAsLowest) {
    const SupportedPlatforms record = platformsOf(
        {{Model::iOS,
          StageVersions{{Stage::introduction, "13.0"}, {Stage::deprecation, "15"}, {Stage::removal, "17.2"}}},
         {Model::macOS, std::nullopt}});
    EXPECT_TRUE(record.isBeforeIntroduction(Model::iOS, "12.4"));
    EXPECT_TRUE(record.isBeforeIntroduction(Model::iOS, ""));
    EXPECT_FALSE(record.isBeforeIntroduction(Model::iOS, "13"));
    EXPECT_FALSE(record.isBeforeIntroduction(Model::iOS, "13.10"));
    EXPECT_FALSE(record.isBeforeIntroduction(Model::macOS, ""));
    EXPECT_FALSE(record.isBeforeIntroduction(Model::tvOS, ""));

    EXPECT_TRUE(record.hasReachedStage(Model::iOS, "15.0", Stage::deprecation));
    EXPECT_TRUE(record.hasReachedStage(Model::iOS, "16", Stage::deprecation));
    EXPECT_FALSE(record.hasReachedStage(Model::iOS, "14.9", Stage::deprecation));
    EXPECT_TRUE(record.hasReachedStage(Model::iOS, "", Stage::removal));
    EXPECT_FALSE(record.hasReachedStage(Model::iOS, "17.1", Stage::removal));
    EXPECT_TRUE(record.hasReachedStage(Model::iOS, "17.10", Stage::removal));
    EXPECT_FALSE(record.hasReachedStage(Model::macOS, "", Stage::deprecation));

    EXPECT_EQ(record.versionOfStage(Stage::removal, Model::iOS), QStringLiteral("17.2"));
    EXPECT_FALSE(record.versionOfStage(Stage::removal, Model::macOS));
    EXPECT_FALSE(record.versions(Model::macOS));
    EXPECT_FALSE(record.versions(Model::watchOS));
    EXPECT_EQ(record.versions(Model::iOS)->size(), 3u);
    EXPECT_TRUE(record.contains(Model::macOS));
    EXPECT_FALSE(record.contains(Model::tvOS));
}
