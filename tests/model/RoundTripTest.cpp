// Profiles of our own making, holding every kind of value, nested
// containers, keys no manifest describes and payloads no domain describes:
// reading and saving must give back the same tree, apart from the repairs
// that saving makes on purpose.

#include "ModelTestSupport.h"

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using namespace quorlin::test;

const QString content = QStringLiteral("PayloadContent");

plist::Dictionary profileFixture(const QString& name) {
    return readDictionary(testDataPath("model/profiles/" + name));
}

bool isKnownType(const plist::Value& payload) {
    const auto type = payload.dictionary() ? payload.dictionary()->string("PayloadType") : std::nullopt;
    return type == "com.example.everything" || type == "com.apple.profileRemovalPassword";
}

// Known payloads keep their order and come first; unknown ones follow in theirs.
plist::Dictionary withKnownPayloadsFirst(plist::Dictionary profile) {
    plist::Array known;
    plist::Array unknown;
    for (const plist::Value& payload : *profile.array(content))
        (isKnownType(payload) ? known : unknown).append(payload);
    profile.insert(content, known + unknown);
    return profile;
}

class RoundTripTest : public ::testing::TestWithParam<const char*> {
protected:
    Profile::Pointer parse(const QByteArray& data) {
        auto parsed = Profile::parseProfile(data, fixtureDomains(), makeTestEnvironment());
        EXPECT_TRUE(parsed);
        return parsed ? *parsed : nullptr;
    }
};

TEST_P(RoundTripTest, SavingGivesBackWhatWasRead) {
    const QString name = QString::fromUtf8(GetParam());
    const plist::Dictionary input = profileFixture(name);
    ASSERT_FALSE(input.isEmpty());

    const auto first = parse(readFile(testDataPath("model/profiles/" + name)));
    ASSERT_TRUE(first);
    EXPECT_FALSE(first->malformedPayloadContentRemoved());
    EXPECT_TRUE(first->validationErrors().isEmpty());
    const auto firstData = first->profileData();
    ASSERT_TRUE(firstData);
    const auto saved = plist::PlistReader::read(*firstData);
    ASSERT_TRUE(saved && saved->root.dictionary());
    EXPECT_EQ(*saved->root.dictionary(), withKnownPayloadsFirst(input));

    const auto second = parse(*firstData);
    ASSERT_TRUE(second);
    EXPECT_EQ(second->profileData(), firstData);
}

INSTANTIATE_TEST_SUITE_P(OwnProfiles, RoundTripTest,
                         ::testing::Values("every-kind.mobileconfig", "every-kind-binary.mobileconfig",
                                           "unknown-payloads-first.mobileconfig",
                                           "held-values.mobileconfig"));

TEST(RoundTripRepairTest, OnlyRepeatedUUIDsDefaultIdentifiersAndMalformedElementsChange) {
    const plist::Dictionary input = profileFixture("needs-repair.mobileconfig");
    auto parsed = Profile::parseProfile(readFile(testDataPath("model/profiles/needs-repair.mobileconfig")),
                                        fixtureDomains(), makeTestEnvironment());
    ASSERT_TRUE(parsed);
    const auto profile = *parsed;
    EXPECT_TRUE(profile->malformedPayloadContentRemoved());
    EXPECT_EQ(profile->validationErrors().size(), 2);

    plist::Array expected;
    for (const plist::Value& element : *input.array(content)) {
        if (!element.dictionary())
            continue;
        plist::Dictionary payload = *element.dictionary();
        if (payload.string("PayloadIdentifier") == "org.example.everything.duplicate")
            payload.insert("PayloadUUID", CountingUUIDSource::format(1));
        if (payload.string("PayloadIdentifier") == "com.example.everything")
            payload.insert("PayloadIdentifier", "com.example.everything." + *payload.string("PayloadUUID"));
        expected.append(payload);
    }
    plist::Dictionary expectedProfile = input;
    expectedProfile.insert(content, expected);

    const auto data = profile->profileData();
    ASSERT_TRUE(data);
    const auto saved = plist::PlistReader::read(*data);
    ASSERT_TRUE(saved && saved->root.dictionary());
    EXPECT_EQ(*saved->root.dictionary(), expectedProfile);
    EXPECT_TRUE(profile->validationErrors().isEmpty());
}

} // namespace
} // namespace quorlin
