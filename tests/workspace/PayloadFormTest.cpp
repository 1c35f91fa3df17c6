#include "WorkspaceTestSupport.h"
#include "workspace/EditHistory.h"
#include "workspace/PFMSectionViewController.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using namespace test;

struct OpenSection {
    explicit OpenSection(const std::shared_ptr<const PFMDomain>& domain)
        : domains(withGeneralDomain({domain}))
        , profile(Profile::makeNewProfile(domains, makeTestEnvironment()))
        , section(domain) {}

    PFMSectionViewController& form() { return *section.sectionViewController(); }

    Profile::DomainList domains;
    Profile::Pointer profile;
    PFMSection section;
    EditHistory history;
};

TEST(PayloadForm, WithNothingToShowAndNoFilterIsEmptyNotFiltered) {
    OpenSection open(workspaceDomain(QStringLiteral("hidden")));
    open.history.addPayload(open.section, open.profile);
    PayloadViewController& form = *open.form().payloadControllers().front();
    EXPECT_TRUE(form.fieldViewControllers().empty());
    form.setFieldDisplaySettings(FieldDisplaySettings());
    EXPECT_FALSE(form.isNoFieldsDisplayedShown());
    // The message answers a filter only, and goes when the filter does.
    FieldDisplaySettings configuredOnly;
    configuredOnly.filteredForConfigured = true;
    form.setFieldDisplaySettings(configuredOnly);
    EXPECT_TRUE(form.isNoFieldsDisplayedShown());
    form.setFieldDisplaySettings(FieldDisplaySettings());
    EXPECT_FALSE(form.isNoFieldsDisplayedShown());
}

TEST(PayloadForm, RemovingTheExpandedFormOfTwoExpandsTheOther) {
    OpenSection open(fixtureDomain(QStringLiteral("everything")));
    open.history.addPayload(open.section, open.profile);
    open.history.addPayload(open.section, open.profile);
    const auto& forms = open.form().payloadControllers();
    ASSERT_EQ(forms.size(), 2u);
    // A new form collapses the others.
    EXPECT_TRUE(forms[0]->isCollapsed());
    EXPECT_FALSE(forms[1]->isCollapsed());
    open.history.removePayloads(open.section, open.profile, {1});
    ASSERT_EQ(open.form().payloadControllers().size(), 1u);
    EXPECT_FALSE(open.form().payloadControllers().front()->isCollapsed());
}

TEST(PayloadForm, SinglePayloadSectionTakesOneAndHasNoCollapseButton) {
    OpenSection open(workspaceDomain(QStringLiteral("single")));
    EXPECT_EQ(open.history.addPayload(open.section, open.profile), PFMSection::AddPayloadResult::added);
    EXPECT_EQ(open.history.addPayload(open.section, open.profile), PFMSection::AddPayloadResult::refused);
    // A refused add leaves no step to undo.
    EXPECT_EQ(open.history.undoStack().count(), 1);
    const PayloadViewController& form = *open.form().payloadControllers().front();
    EXPECT_FALSE(form.hasCollapseButton());
    // Only sections that take several payloads number them.
    EXPECT_EQ(form.payload()->displayName(), QStringLiteral("Single"));
}

TEST(PayloadForm, RecountingPicksUpNewTargets) {
    OpenSection open(workspaceDomain(QStringLiteral("mac-only")));
    open.history.addPayload(open.section, open.profile);
    open.history.setValue(
        open.form().payloadControllers().front()->payload()->keyAtPath(QStringLiteral("MacOnly")),
        plist::Value("set"));
    EXPECT_EQ(open.section.errorCount(), 0);

    QTemporaryDir folder;
    UserDefaults defaults(folder.filePath(QStringLiteral("defaults.plist")));
    auto settings = std::make_shared<ValidationSettings>(defaults);
    settings->setSuspendSavingToDefaults(true);
    for (const auto model : PFMSupportedPlatforms::allModels)
        settings->setTargeting(model, model == PFMSupportedPlatforms::Model::iOS);
    open.section.setValidationSettings(settings);
    open.form().recountErrors();
    // A key for macOS alone is a fault in a profile meant for iOS.
    EXPECT_EQ(open.section.errorCount(), 1);
}

} // namespace
} // namespace quorlin
