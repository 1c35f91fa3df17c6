// The information panel's content for keys and domains, and the words of
// platform tags.

#include "FieldsTestSupport.h"
#include "support/DataManifests.h"

#include "fields/InfoPanelViewModel.h"
#include "fields/PlatformTag.h"

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using namespace quorlin::test;
using Model = PFMSupportedPlatforms::Model;
using Stage = PFMSupportedPlatforms::LifeCycleStage;

class PropertyInfoTest : public ::testing::Test {
protected:
    void SetUp() override { payload = dataPayload("fields/property-info.plist"); }
    InfoPanelViewModel info(const QString& key) { return InfoPanelViewModel::make(*payload->keyAtPath(key)); }

    Payload::Pointer payload;
};

TEST_F(PropertyInfoTest, AllowedValuesInWords) {
    EXPECT_FALSE(info("Plain").allowedValues);
    EXPECT_EQ(info("Count").allowedValues, "Any integer number between 1 and 9.");
    EXPECT_EQ(info("Ratio").allowedValues, "Any real number equal or larger than 0.000000.");
    EXPECT_EQ(info("Short").allowedValues, "Any string no longer than 8 characters.");
    EXPECT_EQ(info("Blob").allowedValues, "Any data stream no longer than 2 KB.");
    EXPECT_EQ(info("Mode").allowedValues, "0, One, 2");
    EXPECT_EQ(info("One").allowedValues, "Array with no more than one item.");
    EXPECT_EQ(info("Many").allowedValues, "Array with no more than 4 items");
    EXPECT_EQ(info("AtLeastOne").allowedValues, "Array with a minimum of one item");
    EXPECT_EQ(info("Between").allowedValues, "Array with between 2 and 3 items.");

    const auto code = info("Code");
    const QString lead =
        "Any string between 2 and 4 charachters long and matching the regular expression format ";
    EXPECT_EQ(code.allowedValues, lead + "^[A-Z]+$");
    EXPECT_EQ(code.allowedValuesFixedPitchRange, (TextRange{lead.size(), 8}));
    EXPECT_EQ(info("Pattern").allowedValues, "Any string matching the regular expression format ^x$");
}

TEST_F(PropertyInfoTest, TypeDefaultAndPresence) {
    const auto off = info("Off");
    EXPECT_EQ(off.type, "boolean");
    EXPECT_EQ(off.defaultValue, "false");
    EXPECT_EQ(off.presence, "Required");
    const auto count = info("Count");
    EXPECT_EQ(count.defaultValue, "3");
    EXPECT_EQ(count.presence, "Optional");
    EXPECT_EQ(count.name, "Count");
    EXPECT_FALSE(info("Plain").defaultValue);
    EXPECT_FALSE(info("Plain").note);
    ASSERT_TRUE(info("Plain").availabilityTable);
    EXPECT_TRUE(info("Plain").availabilityTable->isEmpty());
}

TEST_F(PropertyInfoTest, AvailabilityRowsLeaveOutWhatSaysNothing) {
    const auto noted = info("Noted");
    EXPECT_EQ(noted.note, "Community note: Mind the gap");
    EXPECT_EQ(noted.documentationURL, QUrl("https://example.com/noted"));
    EXPECT_EQ(noted.sharedIPadBehavior, "Forbidden");
    EXPECT_EQ(noted.availabilityColumns, (QList<Model>{Model::iOS, Model::macOS}));
    EXPECT_EQ(InfoPanelViewModel::columnIdentifier(Model::macOS), "os-column-macos");
    QStringList labels;
    for (const auto& row : *noted.availabilityTable)
        labels.append(row.qualifier);
    // "Requires Supervision" is all false, "Allows Multiple Payloads" isn't for keys.
    EXPECT_EQ(labels, (QStringList{"Introduced", "Deprecated", "Requires MDM Installation",
                                   "User Enrollment Behavior"}));
    const auto& install = noted.availabilityTable->at(2);
    EXPECT_EQ(install.values.at(Model::iOS), AvailabilityItem::Cell(true));
    EXPECT_EQ(install.values.at(Model::macOS), AvailabilityItem::Cell(false));
    EXPECT_TRUE(noted.availabilityTable->at(1).marksEndOfLife);
    EXPECT_EQ(noted.availabilityTable->at(3).values.at(Model::macOS),
              AvailabilityItem::Cell(QString("Allowed")));
}

TEST_F(PropertyInfoTest, ADomainPanelHasNoPresenceAndKeepsItsNote) {
    const auto panel = InfoPanelViewModel::make(*dataDomain("fields/info-domain.plist"));
    EXPECT_EQ(panel.name, "com.example.info");
    EXPECT_EQ(panel.title, "Test Payload");
    EXPECT_FALSE(panel.presence);
    EXPECT_FALSE(panel.type);
    EXPECT_EQ(panel.note, "As it is");
    QStringList labels;
    for (const auto& row : *panel.availabilityTable)
        labels.append(row.qualifier);
    EXPECT_TRUE(labels.contains("Allows Multiple Payloads"));
}

TEST_F(PropertyInfoTest, SharedIPadFragmentsFollowTheChannels) {
    const auto behaviour = [](plist::Dictionary record) {
        record.insert("pfmx_mode", "required");
        const auto domain = PFMDomain::make(manifestTree(
            "com.example.ipad", plist::Array{keyTree("A", "string")},
            {{"pfmx_supported_oses",
              plist::Dictionary{
                  {"iOS", plist::Dictionary{{"pfmx_introduced", "15.0"}, {"pfmx_shared_ipad", record}}}}}}));
        return InfoPanelViewModel::make(*domain).sharedIPadBehavior.value_or("<none>");
    };
    EXPECT_EQ(behaviour({{"pfmx_device_channel", true}, {"pfmx_user_channel", true}}),
              "Required, supports both device and user MDM channels.");
    EXPECT_EQ(behaviour({{"pfmx_device_channel", true}}), "Required, supports only the device MDM channel.");
    EXPECT_EQ(behaviour({{"pfmx_device_channel", false}, {"pfmx_user_channel", true}}),
              "Required, supports only the user MDM channel.");
    EXPECT_EQ(behaviour({}), "Required");
}

TEST(PlatformTagTest, TheTooltipNamesEveryStageThereIs) {
    using Versions = PlatformTag::StageVersions;
    const auto tip = [](Versions versions, bool onDomain) {
        return PlatformTag(Model::macOS, versions, onDomain).toolTip().value_or("<none>");
    };
    EXPECT_EQ(tip({{Stage::introduction, "10.15"}}, false),
              "Support for this preference key was introduced on macOS in version 10.15.");
    EXPECT_EQ(
        tip({{Stage::introduction, "10.7"}, {Stage::deprecation, "11"}, {Stage::removal, "13"}}, true),
        "Support for this preferences domain was introduced on macOS in version 10.7, deprecated in version "
        "11, and removed in version 13.");
    EXPECT_EQ(
        tip({{Stage::introduction, "1"}, {Stage::removal, "3"}}, false),
        "Support for this preference key was introduced on macOS in version 1 and removed in version 3.");
    EXPECT_EQ(tip({{Stage::deprecation, "12"}}, false),
              "Support for this preference key was deprecated on macOS in version 12");
    EXPECT_EQ(
        tip({{Stage::deprecation, "12"}, {Stage::removal, "14"}}, false),
        "Support for this preference key was deprecated on macOS in version 12 and removed in version 14.");
    EXPECT_EQ(tip({{Stage::removal, "14"}}, true),
              "Support for this preferences domain was removed from macOS in version 14.");
    EXPECT_EQ(tip({}, true), "This preferences domain is supported on macOS.");
    EXPECT_EQ(PlatformTag(Model::iOS, std::nullopt, false).toolTip(),
              "This preference key is supported on iOS.");
}

TEST(PlatformTagTest, ATagWithoutAPlatformIsBlank) {
    PlatformTag tag;
    EXPECT_EQ(tag.text(), QString());
    EXPECT_FALSE(tag.toolTip());
    tag.setModelLowercase("watchos");
    EXPECT_EQ(tag.text(), "watchOS");
    const auto tags = PlatformTag::tags(
        SupportedPlatforms::make(PFMSupportedPlatforms::Models{Model::tvOS, Model::iOS}, std::nullopt), true);
    ASSERT_EQ(tags.size(), 2);
    EXPECT_EQ(tags.at(0).text(), "iOS");
    EXPECT_TRUE(tags.at(1).onDomain());
}

} // namespace
} // namespace quorlin
