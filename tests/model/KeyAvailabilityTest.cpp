// Availability of keys: a key narrows what its payload's domain, or its
// parent, offers, and a key that says nothing inherits it.

#include "ModelTestSupport.h"
#include "support/DataManifests.h"

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using namespace quorlin::test;
using Model = PFMSupportedPlatforms::Model;
using Stage = PFMSupportedPlatforms::LifeCycleStage;

TEST(KeyAvailabilityTest, KeysNarrowTheirDomainAndChildrenInheritWhenSilent) {
    const auto domain = dataDomain("model/manifests/availability.plist");
    const auto payload = Payload::make(domain, nullptr, makeTestEnvironment());

    const auto plain = payload->keyAtPath("Plain")->supportedPlatforms();
    ASSERT_TRUE(plain);
    EXPECT_EQ(plain, domain->supportedPlatforms());

    const auto macOnly = payload->keyAtPath("MacOnly")->supportedPlatforms();
    ASSERT_TRUE(macOnly);
    EXPECT_FALSE(macOnly->contains(Model::iOS));
    EXPECT_EQ(macOnly->versionOfStage(Stage::introduction, Model::macOS), "11.0");

    EXPECT_EQ(payload->keyAtPath("MacOnly.Inherits")->supportedPlatforms(), macOnly);
    const auto later = payload->keyAtPath("MacOnly.Later");
    EXPECT_EQ(later->supportedPlatforms()->versionOfStage(Stage::introduction, Model::macOS), "13.0");
    EXPECT_FALSE(later->supportedPlatforms()->contains(Model::iOS));
    EXPECT_EQ(later->collectSupportedOSes().size(), 2);
}

} // namespace
} // namespace quorlin
