// The link between a control and a key: both directions, transformers,
// placeholders, paths into nested keys, and the writer every edit goes through.

#include "FieldsTestSupport.h"
#include "support/DataManifests.h"

#include "fields/KeyPath.h"
#include "fields/ValueBinding.h"
#include "fields/ValueTransformerRegistry.h"

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using namespace quorlin::test;
using Role = ValueBinding::Role;

class BindingTest : public ::testing::Test {
protected:
    void SetUp() override {
        payload = dataPayload(
            "fields/binding.plist",
            {{"Name", "first"},
             {"Accounts", plist::Array{plist::Dictionary{{"Server", "one"}},
                                       plist::Dictionary{{"Server", "two"},
                                                         {"Options", plist::Dictionary{{"Port", 443}}}}}}});
    }
    std::shared_ptr<ValueBinding> bindTo(const QString& keyPath, const QString& path,
                                         BindingOptions options = {}) {
        return ValueBinding::make(Role::value, control, payload->keyAtPath(keyPath), KeyPath(path), options,
                                  writer);
    }

    Payload::Pointer payload;
    RecordingControl control;
    std::shared_ptr<RecordingWriter> writer = std::make_shared<RecordingWriter>();
};

TEST_F(BindingTest, EditsTravelBothWaysAndThroughTheWriter) {
    BindingOptions options;
    options.nullPlaceholder = plist::Value("Your name");
    const auto binding = bindTo("Name", "value", options);
    EXPECT_EQ(control.shown, plist::Value("first"));
    EXPECT_EQ(placeholderText(control.placeholder), "Your name");
    EXPECT_TRUE(control.enabled);

    const int shownBefore = control.showCount;
    binding->controlValueDidChange(plist::Value("second"));
    EXPECT_EQ(payload->stringValue("Name"), "second");
    EXPECT_EQ(writer->identities, QStringList{"Name"});
    // The control already shows what it wrote; it isn't reset under the user's typing.
    EXPECT_EQ(control.showCount, shownBefore);

    // A control that reports what the key already holds (focus leaving an
    // untouched field) makes no edit.
    binding->controlValueDidChange(plist::Value("second"));
    EXPECT_EQ(writer->identities, QStringList{"Name"});

    payload->keyAtPath("Name")->setValue(plist::Value("third"));
    EXPECT_EQ(control.shown, plist::Value("third"));
    payload->keyAtPath("Name")->setValue(PreferenceKeyValue());
    EXPECT_TRUE(control.shown.isNull());
}

TEST_F(BindingTest, OnlyTheEndOfEditingWritesUnlessUpdatesAreContinuous) {
    const auto atEnd = bindTo("Name", "value");
    atEnd->controlValueDidChange(plist::Value("typing"), false);
    EXPECT_EQ(payload->stringValue("Name"), "first");
    atEnd->controlValueDidChange(plist::Value("typed"), true);
    EXPECT_EQ(payload->stringValue("Name"), "typed");

    BindingOptions continuous;
    continuous.continuouslyUpdatesValue = true;
    const auto eachKey = bindTo("Name", "value", continuous);
    eachKey->controlValueDidChange(plist::Value("t"), false);
    eachKey->controlValueDidChange(plist::Value("ty"), false);
    EXPECT_EQ(payload->stringValue("Name"), "ty");
    // Consecutive keystrokes carry one identity, so they can merge into one step.
    EXPECT_EQ(writer->identities, (QStringList{"Name", "Name", "Name"}));
}

TEST_F(BindingTest, AnUnboundControlNeitherHearsNorWrites) {
    const auto binding = bindTo("Name", "value");
    binding->unbind();
    EXPECT_FALSE(binding->isBound());
    payload->keyAtPath("Name")->setValue(plist::Value("elsewhere"));
    EXPECT_EQ(control.shown, plist::Value("first"));
    binding->controlValueDidChange(plist::Value("late"));
    EXPECT_EQ(payload->stringValue("Name"), "elsewhere");
    EXPECT_TRUE(writer->identities.isEmpty());
}

TEST_F(BindingTest, ATransformerConvertsBothWaysAndAFailureUnsets) {
    BindingOptions options;
    options.valueTransformer = ValueTransformerRegistry::transformer("DataToHexStringValueTransformer");
    const auto binding = bindTo("Blob", "value", options);
    EXPECT_TRUE(control.shown.isNull());
    binding->controlValueDidChange(plist::Value("0xCAFE"));
    EXPECT_EQ(payload->keyAtPath("Blob")->writeOutValue(), plist::Value(QByteArray("\xca\xfe", 2)));
    binding->controlValueDidChange(plist::Value("caf"));
    EXPECT_FALSE(payload->keyAtPath("Blob")->writeOutValue());

    // A one-way transformer never writes.
    options.valueTransformer =
        ValueTransformerRegistry::transformer("StringEmptinessToBooleanValueTransformer");
    const auto oneWay = bindTo("Name", "value", options);
    EXPECT_EQ(control.shown, plist::Value(false));
    oneWay->controlValueDidChange(plist::Value(true));
    EXPECT_EQ(payload->stringValue("Name"), "first");
}

TEST_F(BindingTest, AContentBindingListsThePrototypesValues) {
    BindingOptions options;
    options.insertsNullPlaceholder = true;
    const auto content = ValueBinding::make(Role::content, control, payload->keyAtPath("Mode"),
                                            KeyPath("prototype.rangeList"), options, writer);
    EXPECT_EQ(control.content, (plist::Array{"a", "b"}));
    EXPECT_TRUE(control.emptyEntry);
    content->controlValueDidChange(plist::Value("a"));
    EXPECT_FALSE(payload->keyAtPath("Mode")->writeOutValue());
}

TEST_F(BindingTest, PathsReachIntoDictionariesAndArrayItems) {
    const auto accounts = payload->keyAtPath("Accounts");
    const auto second = accounts->value().keyList()->at(1);
    const KeyPath port("value.Options.value.Port.value");
    EXPECT_EQ(*port.read(second).plistValue(), plist::Value(443));
    EXPECT_EQ(KeyPath("value.Options.value.Port").resolveKey(second)->name(), "Port");
    EXPECT_EQ(KeyPath("value.1.value.Server.value").read(accounts).plistValue()->toString(), "two");
    EXPECT_TRUE(KeyPath("value.Missing.value").read(second).isAbsent());
    EXPECT_FALSE(KeyPath("value.Missing.value").writableKey(second));
    EXPECT_FALSE(KeyPath("prototype.rangeList").writableKey(second));
    EXPECT_EQ(KeyPath::identity(*port.writableKey(second)), "Accounts/1/Options/Port");

    const auto binding =
        ValueBinding::make(Role::value, control, second, KeyPath("value.Server.value"), {}, writer);
    EXPECT_EQ(control.shown, plist::Value("two"));
    binding->controlValueDidChange(plist::Value("three"));
    EXPECT_EQ(writer->identities, QStringList{"Accounts/1/Server"});
    EXPECT_EQ(accounts->writeOutValue()->array()->at(1).dictionary()->string("Server"), "three");
}

} // namespace
} // namespace quorlin
