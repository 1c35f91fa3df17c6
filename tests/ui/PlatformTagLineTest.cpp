#include "ui/ContentView.h"
#include "ui/FieldRowView.h"
#include "ui/PayloadFormView.h"
#include "ui/SectionFormView.h"
#include "workspace/EditHistory.h"
#include "workspace/WorkspaceTestSupport.h"

#include <QLabel>

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using namespace test;

// A row whose platforms differ from the section's tells them on one quiet line, not a box each.
TEST(PlatformTagLine, PlatformTagsAreOneLinePerFieldAndOnlyWhereTheyDiffer) {
    const auto domains =
        withGeneralDomain(domainsInFolder(testDataPath(QStringLiteral("workspace/forms/platforms"))));
    const auto profile = Profile::makeNewProfile(domains, makeTestEnvironment());
    PFMSectionCollection collection(domains);
    PFMSection& section = *sectionTitled(collection, QStringLiteral("Devices"));
    EditHistory history;
    section.setKeyValueWriter(history.keyValueWriter());
    section.bind(profile);
    history.addPayload(section, profile);
    ContentView view;
    FieldDisplaySettings settings;
    settings.showPlatformTag = true;
    settings.showPlatformTagOnlyWhenDifferent = true;
    view.setFieldDisplaySettings(settings);
    view.setSection(&section);
    view.show();
    PayloadFormView* form = view.sectionFormView()->payloadViews().first();

    FieldRowView* phoneAndMac = form->rowForKey(QStringLiteral("PhoneAndMac"));
    ASSERT_TRUE(phoneAndMac);
    const auto lines = phoneAndMac->findChildren<QLabel*>(QStringLiteral("platformTags"));
    ASSERT_EQ(lines.size(), 1);
    EXPECT_EQ(lines.first()->text(), QStringLiteral("iOS \u00B7 macOS"));
    EXPECT_TRUE(phoneAndMac->findChildren<QLabel*>(QStringLiteral("platformTag")).isEmpty());
}

} // namespace
} // namespace quorlin
