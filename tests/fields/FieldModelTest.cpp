// What a row of a form shows of its key: titles with the searched term,
// the description, the details row and its tags, the required marker that a
// rule switches, enabling, the error and the context menu.

#include "FieldsTestSupport.h"
#include "support/DataManifests.h"

#include "fields/ArrayInstrumentController.h"
#include "fields/FieldModelBuilder.h"
#include "fields/FieldViewController.h"

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using namespace quorlin::test;
using Action = FieldViewController::MenuAction;
using Types = InstrumentFactory::Types;

const QString docs = QStringLiteral("https://example.com/docs");

class FieldModelTest : public ::testing::Test {
protected:
    void SetUp() override { payload = dataPayload("fields/field-model.plist", {{"Ghost", "boo"}}); }
    std::shared_ptr<FieldViewController> field(const QString& name) {
        auto made = FieldViewController::make(payload->keyAtPath(name));
        made->makeInstrument(writer);
        return made;
    }

    Payload::Pointer payload;
    std::shared_ptr<RecordingWriter> writer = std::make_shared<RecordingWriter>();
};

TEST_F(FieldModelTest, TheSearchedTermIsMarkedEverywhereItOccurs) {
    const auto row = field("AllowAbout");
    FieldDisplaySettings settings;
    settings.highlightedTerm = "a";
    row->setFieldDisplaySettings(settings);
    EXPECT_TRUE(row->displayTitle().highlights.isEmpty());
    EXPECT_FALSE(row->hasTermMatch());

    settings.highlightedTerm = "AB";
    row->setFieldDisplaySettings(settings);
    EXPECT_EQ(row->displayTitle().highlights, (QList<TextRange>{{6, 2}, {12, 2}}));
    EXPECT_EQ(row->displayName().highlights, (QList<TextRange>{{5, 2}}));
    EXPECT_EQ(row->displayDescription().highlights, (QList<TextRange>{{1, 2}, {4, 2}}));
    EXPECT_TRUE(row->hasTermMatch());
}

TEST_F(FieldModelTest, ABooleanShowsItsDescriptionOnlyWhenAsked) {
    EXPECT_TRUE(field("Proxy")->hideDescription());
    EXPECT_FALSE(field("AllowAbout")->hideDescription());
    const auto quiet = field("Quiet");
    EXPECT_EQ(quiet->arrangement(), FieldViewController::Arrangement::boolean);
    EXPECT_TRUE(quiet->hideDescription());
    FieldDisplaySettings settings;
    settings.showBooleanDescription = true;
    quiet->setFieldDisplaySettings(settings);
    EXPECT_FALSE(quiet->hideDescription());
    EXPECT_EQ(quiet->leadingPadding(), 40);
    EXPECT_EQ(field("Proxy")->leadingPadding(), 0);
}

TEST_F(FieldModelTest, TheRequiredMarkerAndEnablingFollowTheRules) {
    const auto port = field("ProxyPort");
    const auto locked = field("Locked");
    int changes = 0;
    port->setChangeHandler([&] { ++changes; });
    EXPECT_FALSE(port->showsRequiredMarker());
    EXPECT_TRUE(locked->isEnabled());

    payload->keyAtPath("Proxy")->setValue(plist::Value("proxy"));
    port->refresh();
    locked->refresh();
    EXPECT_TRUE(port->showsRequiredMarker());
    EXPECT_FALSE(port->details().allDetailsAreHidden());
    EXPECT_EQ(changes, 1);
    EXPECT_FALSE(locked->isEnabled());
    EXPECT_FALSE(locked->validateMenuItem(Action::forceEmptyValue));

    const auto fixed = field("Fixed");
    EXPECT_FALSE(fixed->isEnabled());
    for (const Action action :
         {Action::unsetOnPayload, Action::setPropertyToDefaultValue, Action::forceEmptyValue})
        EXPECT_FALSE(fixed->validateMenuItem(action));

    FieldDisplaySettings settings;
    settings.showRequirementTag = false;
    port->setFieldDisplaySettings(settings);
    EXPECT_FALSE(port->showsRequiredMarker());
    port->refresh();
    EXPECT_EQ(changes, 2);
}

TEST_F(FieldModelTest, TheErrorRowShowsTheValidatorsFault) {
    const auto port = field("ProxyPort");
    EXPECT_FALSE(port->error());
    int changes = 0;
    port->setChangeHandler([&] { ++changes; });
    payload->keyAtPath("ProxyPort")->setValue(plist::Value(11));
    ASSERT_TRUE(port->error());
    EXPECT_FALSE(port->error()->isEmpty());
    EXPECT_EQ(changes, 1);
    payload->keyAtPath("ProxyPort")->setValue(plist::Value(3));
    EXPECT_FALSE(port->error());
}

TEST_F(FieldModelTest, ABooleanRowSpacesByItsDetailsAndError) {
    const auto quiet = field("Quiet");
    FieldDisplaySettings settings;
    quiet->setFieldDisplaySettings(settings);
    EXPECT_EQ(quiet->spacing(), (FieldViewController::Spacing{1, 0}));
    settings.showFieldName = true;
    quiet->setFieldDisplaySettings(settings);
    EXPECT_EQ(quiet->spacing(), (FieldViewController::Spacing{16, 4}));
    EXPECT_FALSE(field("Proxy")->spacing());
}

TEST_F(FieldModelTest, SupervisionTagShowsWhenAskedOrFound) {
    const auto supervised = field("Supervised");
    EXPECT_TRUE(supervised->details().showsSupervisedOnlyTag());
    FieldDisplaySettings settings;
    supervised->setFieldDisplaySettings(settings);
    EXPECT_FALSE(supervised->details().showsSupervisedOnlyTag());
    settings.highlightedTerm = "super";
    supervised->setFieldDisplaySettings(settings);
    EXPECT_TRUE(supervised->details().showsSupervisedOnlyTag());
    EXPECT_EQ(supervised->details().highlightedTermMatchesSupervision(), (QList<TextRange>{{0, 5}}));
    EXPECT_FALSE(field("Proxy")->details().showsSupervisedOnlyTag());
}

TEST_F(FieldModelTest, PlatformTagsShowByTheSettingsAndTheDifference) {
    const auto own = field("IOSOnly");
    const auto inherited = field("Proxy");
    // Without settings, or only when different: a key that says nothing of
    // its platforms has the section's.
    EXPECT_EQ(own->details().platformTags().size(), 1);
    EXPECT_EQ(own->details().platformTags().first().text(), "iOS");
    EXPECT_TRUE(inherited->details().platformTags().isEmpty());

    FieldDisplaySettings settings;
    settings.showPlatformTag = true;
    settings.showPlatformTagOnlyWhenDifferent = true;
    inherited->setFieldDisplaySettings(settings);
    EXPECT_TRUE(inherited->details().platformTags().isEmpty());
    settings.showPlatformTag = false;
    own->setFieldDisplaySettings(settings);
    EXPECT_TRUE(own->details().platformTags().isEmpty());
    EXPECT_TRUE(own->details().allDetailsAreHidden());
}

TEST_F(FieldModelTest, TheDocumentationButtonNeedsALinkOfTheKeysOwn) {
    FieldDisplaySettings settings;
    settings.showPropertyDocumentationButton = true;
    const auto same = field("SameDocs");
    const auto ownLink = field("OwnDocs");
    same->setFieldDisplaySettings(settings);
    ownLink->setFieldDisplaySettings(settings);
    EXPECT_FALSE(same->details().showsDocumentationButton());
    EXPECT_TRUE(ownLink->details().showsDocumentationButton());
    EXPECT_EQ(ownLink->details().documentationURL(), QUrl(docs + "/own"));
}

TEST_F(FieldModelTest, TheContextMenuOffersWhatTheValueAllows) {
    const auto ghost = field("Ghost");
    EXPECT_FALSE(ghost->validateMenuItem(Action::unsetOnPayload));
    EXPECT_TRUE(ghost->validateMenuItem(Action::openPropertyInfoPanel));

    const auto proxy = field("Proxy");
    EXPECT_FALSE(proxy->validateMenuItem(Action::unsetOnPayload));
    EXPECT_FALSE(proxy->validateMenuItem(Action::setPropertyToDefaultValue));
    EXPECT_TRUE(proxy->validateMenuItem(Action::forceEmptyValue));
    proxy->perform(Action::forceEmptyValue);
    EXPECT_EQ(payload->keyAtPath("Proxy")->writeOutValue(), plist::Value(QString()));
    EXPECT_FALSE(proxy->validateMenuItem(Action::forceEmptyValue));
    EXPECT_TRUE(proxy->validateMenuItem(Action::unsetOnPayload));
    proxy->perform(Action::unsetOnPayload);
    EXPECT_FALSE(payload->keyAtPath("Proxy")->writeOutValue());

    const auto quiet = field("Quiet");
    EXPECT_FALSE(quiet->validateMenuItem(Action::forceEmptyValue));
    EXPECT_TRUE(quiet->validateMenuItem(Action::setPropertyToDefaultValue));
    quiet->perform(Action::setPropertyToDefaultValue);
    EXPECT_EQ(payload->keyAtPath("Quiet")->writeOutValue(), plist::Value(true));
    EXPECT_FALSE(quiet->validateMenuItem(Action::setPropertyToDefaultValue));

    const auto names = field("Names");
    names->perform(Action::forceEmptyValue);
    EXPECT_EQ(payload->keyAtPath("Names")->writeOutValue(), plist::Value(plist::Array()));
    EXPECT_EQ(writer->identities, (QStringList{"", "", "", ""}));
}

TEST_F(FieldModelTest, AnArrayRowHasATablePerItemPrototype) {
    EXPECT_EQ(field("Names")->arrangement(), FieldViewController::Arrangement::array);
    EXPECT_EQ(field("Names")->instruments().size(), 1);
    const auto mixed = field("Mixed");
    ASSERT_EQ(mixed->instruments().size(), 2);
    const auto* second = dynamic_cast<ArrayInstrumentController*>(mixed->instruments().at(1).get());
    ASSERT_TRUE(second);
    EXPECT_EQ(second->underlyingSubkeyPrototypeIndex(), 1);
    EXPECT_EQ(second->underlyingSubkeyPrototype()->kind(), PFMKeyPrototype::Kind::integer);
    EXPECT_EQ(mixed->instruments().first()->parentFieldViewController(), mixed.get());
}

TEST_F(FieldModelTest, AWholeDomainBuildsItsVisibleFields) {
    const auto built = FieldModelBuilder::build(payload, writer);
    QStringList names;
    for (const auto& row : built)
        names.append(row->field()->name());
    EXPECT_FALSE(names.contains("Hidden"));
    EXPECT_TRUE(names.contains("Mixed"));
    EXPECT_EQ(built.size(), payload->preferenceKeys().size() - 1);
    for (const auto& row : built) {
        if (row->arrangement() != FieldViewController::Arrangement::array) {
            EXPECT_EQ(row->instruments().size(), 1) << row->field()->name().toStdString();
        }
    }
}

} // namespace
} // namespace quorlin
