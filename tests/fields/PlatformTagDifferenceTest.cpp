// Platform tags tell only what a row narrows: a key that names no platforms, or
// the section's own, shows none; one that names others shows them.

#include "FieldsTestSupport.h"

#include "fields/FieldDetailsViewController.h"

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using namespace quorlin::test;

QStringList tagTexts(const Payload::Pointer& payload, const QString& path) {
    FieldDetailsViewController details(payload->keyAtPath(path));
    FieldDisplaySettings settings;
    settings.showPlatformTag = true;
    settings.showPlatformTagOnlyWhenDifferent = true;
    details.setFieldDisplaySettings(settings);
    QStringList texts;
    for (const PlatformTag& tag : details.platformTags())
        texts.append(tag.text());
    return texts;
}

TEST(PlatformTagDifference, TagsShowOnlyWhereTheKeyNarrowsTheSectionsPlatforms) {
    const plist::Array keys{
        keyTree("Plain", "string"),
        keyTree("Same", "string", {{"pfm_quorlin_platforms", plist::Array{"ios", "macos"}}}),
        keyTree("Phone", "string", {{"pfm_quorlin_platforms", plist::Array{"ios"}}}),
        withSubkeys(keyTree("Group", "dictionary"),
                    {keyTree("Inner", "string"),
                     keyTree("InnerMac", "string", {{"pfm_quorlin_platforms", plist::Array{"macos"}}})}),
    };
    const struct {
        plist::Dictionary domainExtra;
        const char* path;
        QStringList tags;
    } cases[] = {
        {{{"pfm_quorlin_platforms", plist::Array{"ios", "macos"}}}, "Plain", {}},
        {{{"pfm_quorlin_platforms", plist::Array{"ios", "macos"}}}, "Same", {}},
        {{{"pfm_quorlin_platforms", plist::Array{"ios", "macos"}}}, "Phone", {"iOS"}},
        {{{"pfm_quorlin_platforms", plist::Array{"ios", "macos"}}}, "Group.Inner", {}},
        {{{"pfm_quorlin_platforms", plist::Array{"ios", "macos"}}}, "Group.InnerMac", {"macOS"}},
        // A section that names no platforms has them all, so any key that names some narrows them.
        {{}, "Plain", {}},
        {{}, "Phone", {"iOS"}},
    };
    for (const auto& row : cases) {
        const auto domain = PFMDomain::make(manifestTree("com.example.tags", keys, row.domainExtra));
        const auto payload = Payload::make(domain, nullptr, makeTestEnvironment(),
                                           plist::Dictionary{{"Group", plist::Dictionary{}}});
        EXPECT_EQ(tagTexts(payload, row.path), row.tags) << row.path;
    }
}

} // namespace
} // namespace quorlin
