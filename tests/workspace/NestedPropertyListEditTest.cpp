// The raw editor's edits of a payload a manifest describes reach inside its
// arrays and dictionaries, and the values the payload holds from its file
// without binding them are found at their place, edited and removed there.

#include "WorkspaceTestSupport.h"
#include "schema/SchemaTrees.h"
#include "workspace/EditHistory.h"
#include "workspace/HeldValuePaths.h"
#include "workspace/PropertyListEdit.h"

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using namespace test;
using Path = PropertyListEdit::Path;

class NestedPropertyListEdit : public ::testing::Test {
protected:
    void SetUp() override {
        const auto relay = PFMDomain::make(
            manifestTree("com.example.relay",
                         {keyTree("Port", "integer"),
                          keyTree("Hosts", "array", {{"pfm_subkeys", plist::Array{itemTree("string")}}}),
                          withSubkeys(keyTree("Proxy", "dictionary"),
                                      {keyTree("Host", "string"), keyTree("Port", "integer")})}));
        // A string where an integer goes, an item of the wrong class and an entry no subkey describes.
        const plist::Dictionary file{{"Port", "high"},
                                     {"Hosts", plist::Array{"a", 5}},
                                     {"Proxy", plist::Dictionary{{"Host", "p"}, {"Extra", 1}}}};
        payload = Payload::make(relay, nullptr, makeTestEnvironment(), file);
    }
    QList<Path> heldPaths() const {
        QList<Path> paths;
        for (const auto& place : HeldValuePaths::of(*payload))
            paths.append(place.path);
        return paths;
    }
    // Applies an edit of the written tree; false when the history refuses it.
    bool edit(const std::optional<plist::Dictionary>& after) {
        return after && history.setPayloadDictionary(payload, *after);
    }
    plist::Dictionary written() const { return payload->writeOutDictionary(); }

    Payload::Pointer payload;
    EditHistory history;
};

TEST_F(NestedPropertyListEdit, HeldValuesAreFoundWhereTheWrittenTreeHasThem) {
    const QList<Path> expected{{"Port"}, {"Hosts", 1}, {"Proxy", "Extra"}};
    EXPECT_EQ(heldPaths(), expected);
    const plist::Dictionary tree = written();
    for (const auto& place : HeldValuePaths::of(*payload)) {
        EXPECT_TRUE(PropertyListEdit::valueAt(tree, place.path)) << place.reason.toStdString();
        EXPECT_FALSE(place.reason.isEmpty());
    }
}

TEST_F(NestedPropertyListEdit, NestedValuesAndHeldOnesChangeAsUndoableSteps) {
    const plist::Dictionary opened = written();
    const auto proxyHost = payload->keyAtPath("Proxy.Host");

    ASSERT_TRUE(edit(PropertyListEdit::setValue(written(), {"Proxy", "Host"}, plist::Value("q"))));
    // The subkey is the same object, so rules and rows linked to it follow.
    EXPECT_EQ(payload->keyAtPath("Proxy.Host"), proxyHost);
    EXPECT_EQ(proxyHost->value().plistValue()->toString(), QStringLiteral("q"));
    ASSERT_TRUE(edit(PropertyListEdit::add(written(), {"Hosts"})));
    EXPECT_EQ(payload->keyAtPath("Hosts")->value().keyList()->size(), 3);

    // Held values: the wrong one set right, the undescribed one retyped, then removed.
    ASSERT_TRUE(edit(PropertyListEdit::setValue(written(), {"Port"}, plist::Value(80))));
    ASSERT_TRUE(edit(PropertyListEdit::setValue(written(), {"Proxy", "Extra"}, plist::Value("x"))));
    EXPECT_EQ(heldPaths(), (QList<Path>{{"Hosts", 1}, {"Proxy", "Extra"}}));
    ASSERT_TRUE(edit(PropertyListEdit::remove(written(), {"Proxy", "Extra"})));
    EXPECT_EQ(heldPaths(), (QList<Path>{{"Hosts", 1}}));

    // Where the manifest describes a type, another is refused, nested or not.
    const plist::Dictionary edited = written();
    for (const auto& refused : {PropertyListEdit::setValue(edited, {"Hosts", 0}, plist::Value(1)),
                                PropertyListEdit::setValue(edited, {"Proxy", "Port"}, plist::Value("p")),
                                PropertyListEdit::setValue(edited, {"Proxy"}, plist::Value(plist::Array()))})
        EXPECT_FALSE(edit(refused));
    EXPECT_EQ(history.undoStack().count(), 5);

    while (history.undoStack().canUndo())
        history.undoStack().undo();
    EXPECT_EQ(written(), opened);
    EXPECT_EQ(heldPaths().size(), 3);
    while (history.undoStack().canRedo())
        history.undoStack().redo();
    EXPECT_EQ(written(), edited);
}

} // namespace
} // namespace quorlin
