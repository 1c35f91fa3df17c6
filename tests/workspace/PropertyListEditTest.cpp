#include "workspace/PropertyListEdit.h"
#include "WorkspaceTestSupport.h"
#include "schema/SchemaTrees.h"
#include "workspace/EditHistory.h"

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using namespace test;
using Edit = PropertyListEdit;
using Type = plist::Value::Type;

plist::Dictionary sample() {
    return plist::Dictionary{{QStringLiteral("PayloadType"), QStringLiteral("com.example.nobody")},
                             {QStringLiteral("Count"), 3},
                             {QStringLiteral("Servers"), plist::Array{"a.example", "b.example"}},
                             {QStringLiteral("Options"), plist::Dictionary{{QStringLiteral("On"), true}}}};
}

// A profile that holds `payload` alone.
QByteArray profileBytesWith(const plist::Dictionary& payload) {
    const plist::Dictionary profile{
        {QStringLiteral("PayloadContent"), plist::Array{payload}},
        {QStringLiteral("PayloadDisplayName"), QStringLiteral("Raw")},
        {QStringLiteral("PayloadIdentifier"), QStringLiteral("com.example.raw")},
        {QStringLiteral("PayloadType"), QStringLiteral("Configuration")},
        {QStringLiteral("PayloadUUID"), QStringLiteral("8E7B3F4A-1111-4C6D-8E7F-901A2B3C4D5E")},
        {QStringLiteral("PayloadVersion"), 1}};
    return *plist::XmlWriter::write(plist::Value(profile));
}

TEST(PropertyListEdit, EditsByPlaceAndRefusesPlacesThatArentThere) {
    const auto root = sample();
    const auto set = Edit::setValue(root, {QStringLiteral("Servers"), 1}, plist::Value("c.example"));
    ASSERT_TRUE(set);
    EXPECT_EQ(Edit::valueAt(*set, {QStringLiteral("Servers"), 1})->toString(), QStringLiteral("c.example"));
    EXPECT_EQ(root.array(QStringLiteral("Servers"))->at(1).toString(), QStringLiteral("b.example"));

    const auto removed = Edit::remove(root, {QStringLiteral("Servers"), 0});
    ASSERT_TRUE(removed);
    EXPECT_EQ(removed->array(QStringLiteral("Servers"))->size(), 1);
    const auto added = Edit::add(*Edit::add(root, {QStringLiteral("Options")}), {QStringLiteral("Options")});
    ASSERT_TRUE(added);
    EXPECT_TRUE(added->dictionary(QStringLiteral("Options"))->contains(QStringLiteral("New Key 2")));
    const auto renamed = Edit::renameKey(root, {QStringLiteral("Count")}, QStringLiteral("Total"));
    ASSERT_TRUE(renamed);
    EXPECT_EQ(renamed->integer(QStringLiteral("Total")), 3);
    EXPECT_FALSE(renamed->contains(QStringLiteral("Count")));

    EXPECT_FALSE(Edit::setValue(root, {QStringLiteral("Missing")}, plist::Value(1)));
    EXPECT_FALSE(Edit::remove(root, {QStringLiteral("Servers"), 5}));
    EXPECT_FALSE(Edit::add(root, {QStringLiteral("Count")}));
    EXPECT_FALSE(Edit::renameKey(root, {QStringLiteral("Count")}, QStringLiteral("Servers")));
}

TEST(PropertyListEdit, ChangingTypeKeepsWhatTheTextCanSayAndReadsTextByType) {
    struct Case {
        plist::Value value;
        Type type;
        plist::Value expected;
    };
    const Case cases[] = {
        {plist::Value("42"), Type::Integer, plist::Value(42)},
        {plist::Value(42), Type::String, plist::Value("42")},
        {plist::Value(1), Type::Boolean, plist::Value(true)},
        {plist::Value("words"), Type::Integer, plist::Value(0)},
        {plist::Value(2.5), Type::Integer, plist::Value(0)},
        {plist::Value(plist::Array{1}), Type::Dictionary, plist::Value(plist::Dictionary())},
    };
    for (const Case& test : cases)
        EXPECT_EQ(Edit::converted(test.value, test.type), test.expected)
            << test.value.debugDescription().toStdString();
    EXPECT_EQ(Edit::valueFromText(Type::Real, QStringLiteral("2.5")), plist::Value(2.5));
    EXPECT_FALSE(Edit::valueFromText(Type::Integer, QStringLiteral("2.5")));
    EXPECT_FALSE(Edit::valueFromText(Type::Date, QStringLiteral("yesterday")));
    EXPECT_EQ(Edit::valueText(plist::Value(plist::Array{1, 2})), QStringLiteral("2 items"));
}

TEST(PropertyListEdit, UnfamiliarPayloadEditsAreStepsOfTheHistory) {
    const auto domains = withGeneralDomain({});
    auto profile = Profile::parseProfile(profileBytesWith(sample()), domains, makeTestEnvironment());
    ASSERT_TRUE(profile);
    const Profile::Pointer opened = *profile;
    ASSERT_EQ(opened->unfamiliarPayloads().size(), 1);
    const QByteArray before = profileBytes(*opened);
    EditHistory history;
    int changes = 0;
    QObject::connect(&history, &EditHistory::unfamiliarPayloadChanged, [&changes] { ++changes; });
    const QString type = QStringLiteral("com.example.nobody");

    const auto edited =
        Edit::setValue(opened->unfamiliarPayloads().first(), {QStringLiteral("Count")}, plist::Value(7));
    ASSERT_TRUE(history.replaceUnfamiliarPayload(opened, type, 0, *edited));
    EXPECT_EQ(opened->unfamiliarPayloads().first().integer(QStringLiteral("Count")), 7);
    EXPECT_EQ(history.changeCount(), 1);
    history.undoStack().undo();
    EXPECT_EQ(profileBytes(*opened), before);
    history.undoStack().redo();
    EXPECT_EQ(opened->unfamiliarPayloads().first().integer(QStringLiteral("Count")), 7);
    EXPECT_EQ(changes, 3);

    // Its type is what binds it to its row: that can't change here.
    auto retyped = *edited;
    retyped.insert(QStringLiteral("PayloadType"), QStringLiteral("com.example.other"));
    EXPECT_FALSE(history.replaceUnfamiliarPayload(opened, type, 0, retyped));
    EXPECT_FALSE(history.replaceUnfamiliarPayload(opened, type, 1, *edited));
}

// A payload a manifest describes takes values of keys it knows in their types, and others as
// unfamiliar keys.
TEST(PropertyListEdit, APayloadOfAManifestTakesPlainValuesOfItsKeys) {
    const auto relay = PFMDomain::make(manifestTree(
        QStringLiteral("com.example.relay"),
        {keyTree(QStringLiteral("Port"), QStringLiteral("integer"), {{QStringLiteral("pfm_range_max"), 100}}),
         keyTree(QStringLiteral("Hosts"), QStringLiteral("array"),
                 {{QStringLiteral("pfm_subkeys"), plist::Array{itemTree(QStringLiteral("string"))}}})}));
    const Profile::DomainList domains{fixtureDomain(QStringLiteral("root")), relay};
    const auto profile = Profile::makeNewProfile(domains, makeTestEnvironment());
    const auto payload = profile->addPayload(relay);
    ASSERT_TRUE(payload);
    EditHistory history;
    const auto port = payload->keyAtPath(QStringLiteral("Port"));
    const plist::Dictionary written = payload->writeOutDictionary();

    auto after = written;
    after.insert(QStringLiteral("Port"), 500);
    ASSERT_TRUE(history.setPayloadDictionary(payload, after));
    EXPECT_EQ(port->value().plistValue()->toInteger(), 500);
    EXPECT_EQ(payload->writeOutDictionary(), after);
    history.undoStack().undo();
    EXPECT_EQ(payload->writeOutDictionary(), written);

    auto retyped = after;
    retyped.insert(QStringLiteral("Port"), QStringLiteral("500"));
    for (const auto& refused : {retyped, written})
        EXPECT_FALSE(history.setPayloadDictionary(payload, refused));
    EXPECT_EQ(history.undoStack().index(), 0);

    // A key the manifest doesn't describe is kept as the payload's unfamiliar one.
    auto unknown = after;
    unknown.insert(QStringLiteral("New Key"), QString());
    ASSERT_TRUE(history.setPayloadDictionary(payload, unknown));
    EXPECT_EQ(payload->writeOutDictionary(), unknown);
    ASSERT_TRUE(payload->unfamiliarPreferenceKeys());
    EXPECT_EQ(payload->unfamiliarPreferenceKeys()->keys(), QStringList{QStringLiteral("New Key")});
    EXPECT_EQ(history.undoStack().count(), 1) << "one step for both kinds of key";
    history.undoStack().undo();
    EXPECT_EQ(payload->writeOutDictionary(), written);
    EXPECT_FALSE(payload->unfamiliarPreferenceKeys());
}

} // namespace
} // namespace quorlin
