// The scalar instruments' logic: placeholders of empty fields, requirement
// that follows a rule, check boxes over integers, clicks back to a default,
// pop-up entries and rebinding to another key.

#include "FieldsTestSupport.h"
#include "support/DataManifests.h"

#include "fields/BooleanInstrumentController.h"
#include "fields/ComboBoxInstrumentController.h"
#include "fields/IntegerNSNumberToBoolNSNumberValueTransformer.h"
#include "fields/PopUpButtonInstrumentController.h"
#include "fields/StringInstrumentController.h"

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using namespace quorlin::test;

class ScalarInstrumentsTest : public ::testing::Test {
protected:
    void SetUp() override { payload = dataPayload("fields/scalar-instruments.plist"); }
    template <typename Instrument>
    std::unique_ptr<Instrument> attached(const QString& key, bool inTable) {
        auto instrument = std::make_unique<Instrument>();
        instrument->setTableCellMode(inTable);
        instrument->setWriter(writer);
        instrument->setRepresentedObject(payload->keyAtPath(key));
        instrument->attachControl(&control);
        return instrument;
    }

    Payload::Pointer payload;
    RecordingControl control;
    std::shared_ptr<RecordingWriter> writer = std::make_shared<RecordingWriter>();
};

TEST_F(ScalarInstrumentsTest, ARequiredCellSaysSoAndAFormFieldShowsOnlyItsHint) {
    const auto cell = attached<StringInstrumentController>("Host", true);
    EXPECT_EQ(placeholderText(control.placeholder), "host.example.com [Required]");
    EXPECT_EQ(cell->look().lineBreak, InstrumentLook::LineBreak::truncatingTail);
    EXPECT_FALSE(cell->look().bezeled);

    RecordingControl formControl;
    StringInstrumentController field;
    field.setRepresentedObject(payload->keyAtPath("Host"));
    field.attachControl(&formControl);
    EXPECT_EQ(placeholderText(formControl.placeholder), "host.example.com");
    EXPECT_TRUE(field.look().bezeled);

    RecordingControl plainControl;
    StringInstrumentController plain;
    plain.setTableCellMode(true);
    plain.setRepresentedObject(payload->keyAtPath("Plain"));
    plain.attachControl(&plainControl);
    EXPECT_FALSE(plainControl.placeholder);
    EXPECT_TRUE(plain.bindingOptions().continuouslyUpdatesValue);
}

TEST_F(ScalarInstrumentsTest, ACellFollowsARequirementThatARuleSwitches) {
    const auto cell = attached<StringInstrumentController>("ProxyPort", true);
    EXPECT_TRUE(cell->trackRequirementStatus());
    EXPECT_FALSE(control.placeholder);

    payload->keyAtPath("Proxy")->setValue(plist::Value("proxy.example.com"));
    cell->requirementMayHaveChanged();
    EXPECT_EQ(placeholderText(control.placeholder), "[Required]");

    payload->keyAtPath("Proxy")->setValue(PreferenceKeyValue());
    cell->requirementMayHaveChanged();
    EXPECT_FALSE(control.placeholder);

    // In a form the status isn't tracked at all.
    cell->setTableCellMode(false);
    EXPECT_FALSE(cell->trackRequirementStatus());
}

TEST_F(ScalarInstrumentsTest, TextOfDataGoesThroughTheAdaptersConversion) {
    const auto utf8 = attached<StringInstrumentController>("Blob", false);
    EXPECT_EQ(utf8->bindingOptions().valueTransformer->name(), "UTF8DataToStringValueTransformer");
    utf8->valueBinding()->controlValueDidChange(plist::Value("hi"));
    EXPECT_EQ(payload->keyAtPath("Blob")->writeOutValue(), plist::Value(QByteArray("hi")));

    RecordingControl hexControl;
    StringInstrumentController hex;
    hex.setRepresentedObject(payload->keyAtPath("Hex"));
    hex.attachControl(&hexControl);
    EXPECT_EQ(hex.bindingOptions().valueTransformer->name(), "DataToHexStringValueTransformer");
    EXPECT_FALSE(attached<StringInstrumentController>("Plain", false)->bindingOptions().valueTransformer);
}

TEST_F(ScalarInstrumentsTest, AnIntegerSwitchStoresTheLargerOfARangeFromZero) {
    const auto storedOn = [&](const QString& name) {
        auto box = attached<BooleanInstrumentController>(name, false);
        box->click(false, false);
        const auto* transformer = dynamic_cast<const IntegerNSNumberToBoolNSNumberValueTransformer*>(
            box->bindingOptions().valueTransformer.get());
        EXPECT_TRUE(transformer) << name.toStdString();
        return payload->keyAtPath(name)->writeOutValue();
    };
    EXPECT_EQ(storedOn("Level"), plist::Value(5));
    EXPECT_EQ(storedOn("Odd"), plist::Value(1));
    EXPECT_EQ(storedOn("Three"), plist::Value(1));
    // Any non-zero value shows as on.
    payload->keyAtPath("Level")->setValue(plist::Value(1));
    EXPECT_TRUE(attached<BooleanInstrumentController>("Level", false)->displayedState());
}

TEST_F(ScalarInstrumentsTest, ClickingBackToTheDefaultUnsetsWhenThePreferenceSaysSo) {
    const auto box = attached<BooleanInstrumentController>("Enabled", false);
    EXPECT_EQ(control.placeholder, plist::Value(true));
    EXPECT_FALSE(box->bindingOptions().conditionallySetsEnabled);
    payload->keyAtPath("Enabled")->setValue(plist::Value(false));

    EXPECT_EQ(box->click(false, true), BooleanInstrumentController::ClickOutcome::unset);
    EXPECT_TRUE(payload->keyAtPath("Enabled")->value().isAbsent());
    EXPECT_TRUE(box->displayedState());

    // Without the preference the click stores the state.
    EXPECT_EQ(box->click(false, false), BooleanInstrumentController::ClickOutcome::toggled);
    EXPECT_EQ(payload->keyAtPath("Enabled")->writeOutValue(), plist::Value(false));
    // Option alone stores the default explicitly.
    EXPECT_EQ(box->click(true, true), BooleanInstrumentController::ClickOutcome::storedDefault);
    EXPECT_EQ(payload->keyAtPath("Enabled")->writeOutValue(), plist::Value(true));

    const auto required = attached<BooleanInstrumentController>("MustEnable", false);
    payload->keyAtPath("MustEnable")->setValue(plist::Value(false));
    EXPECT_EQ(required->click(false, true), BooleanInstrumentController::ClickOutcome::toggled);
    EXPECT_EQ(payload->keyAtPath("MustEnable")->writeOutValue(), plist::Value(true));
}

TEST_F(ScalarInstrumentsTest, APopUpHasAnEmptyEntryUnlessARequiredCellForbidsIt) {
    const auto inForm = attached<PopUpButtonInstrumentController>("Flavour", false);
    EXPECT_EQ(control.content, (plist::Array{"Vanilla", "c"}));
    EXPECT_TRUE(control.emptyEntry);
    inForm->valueBinding()->controlValueDidChange(plist::Value("Vanilla"));
    EXPECT_EQ(payload->stringValue("Flavour"), "v");
    EXPECT_EQ(inForm->valueBinding()->displayedValue(), plist::Value("Vanilla"));

    RecordingControl cellControl;
    PopUpButtonInstrumentController inTable;
    inTable.setTableCellMode(true);
    inTable.setRepresentedObject(payload->keyAtPath("Flavour"));
    inTable.attachControl(&cellControl);
    EXPECT_FALSE(cellControl.emptyEntry);
    EXPECT_TRUE(inTable.trackRequirementStatus());

    const auto numbers = attached<PopUpButtonInstrumentController>("Size", false);
    EXPECT_EQ(control.content, (plist::Array{"Small", "2"}));
    numbers->valueBinding()->controlValueDidChange(plist::Value("Small"));
    EXPECT_EQ(payload->keyAtPath("Size")->writeOutValue(), plist::Value(1));
}

// A required comma list is never unset, so its cell has no "[Required]" hint.
TEST_F(ScalarInstrumentsTest, ACommaListIsEditedAsOneLine) {
    const auto cell = attached<StringInstrumentController>("Hosts", true);
    EXPECT_FALSE(cell->requiredPlaceholder());
    EXPECT_FALSE(control.placeholder);
    cell->valueBinding()->controlValueDidChange(plist::Value("a.example.com, b.example.com"), false);
    EXPECT_EQ(payload->keyAtPath("Hosts")->writeOutValue(),
              plist::Value(plist::Array{"a.example.com", "b.example.com"}));
    cell->valueBinding()->controlValueDidChange(plist::Value(" "), false);
    EXPECT_EQ(payload->keyAtPath("Hosts")->writeOutValue(), plist::Value(plist::Array()));
    EXPECT_EQ(writer->identities, (QStringList{"Hosts", "Hosts"}));
}

TEST_F(ScalarInstrumentsTest, AComboBoxListsTheSuggestions) {
    const auto combo = attached<ComboBoxInstrumentController>("Pick", true);
    EXPECT_EQ(control.content, (plist::Array{"x", "y"}));
    EXPECT_FALSE(combo->look().bordered);
    combo->setTableCellMode(false);
    EXPECT_TRUE(combo->look().bordered);
}

TEST_F(ScalarInstrumentsTest, ANewKeyIsShownAndEditedInPlaceOfTheOld) {
    const auto field = attached<StringInstrumentController>("Plain", false);
    payload->keyAtPath("Proxy")->setValue(plist::Value("p"));
    field->setRepresentedObject(payload->keyAtPath("Proxy"));
    EXPECT_EQ(control.shown, plist::Value("p"));
    field->valueBinding()->controlValueDidChange(plist::Value("q"));
    EXPECT_EQ(payload->stringValue("Proxy"), "q");
    EXPECT_FALSE(payload->keyAtPath("Plain")->writeOutValue());
    const int shownBefore = control.showCount;
    payload->keyAtPath("Plain")->setValue(plist::Value("not shown"));
    EXPECT_EQ(control.showCount, shownBefore);
}

} // namespace
} // namespace quorlin
