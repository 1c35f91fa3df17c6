// What a file holds that the form never writes (an empty dictionary, a
// ghost's value) is written back, and held array items move with the rows
// around them.

#include "ModelTestSupport.h"

#include <gtest/gtest.h>

#include <functional>

namespace quorlin {
namespace {

using namespace quorlin::test;
using Reason = HeldValues::Reason;
using Rows = PreferenceKey::KeyList;

class HeldValuesKeptTest : public ::testing::Test {
protected:
    void SetUp() override {
        read = readDictionary(testDataPath("held-values/keeping-payload.plist"));
        payload = Payload::make(
            PFMDomain::make(readDictionary(testDataPath("held-values/manifests/com.example.keeping.plist"))),
            nullptr, makeTestEnvironment(), read);
        ASSERT_TRUE(payload);
    }
    plist::Dictionary written() const { return payload->writeOutDictionary(); }

    plist::Dictionary read;
    Payload::Pointer payload;
};

TEST_F(HeldValuesKeptTest, AnEmptyDictionaryAndGhostValuesAreWrittenBackAndHeld) {
    EXPECT_EQ(written(), read);
    QStringList found;
    for (const auto& place : payload->heldValuePlaces()) {
        for (const auto& entry : place.key->heldEntries())
            found << QStringLiteral("%1%2 %3").arg(place.path, entry.place).arg(int(entry.reason));
    }
    // Nothing inside a ghost counts but its own value.
    found.sort();
    EXPECT_EQ(found, (QStringList{"Entries[1] 3", "Entries[4] 3", "Legacy 4", "LegacyOptions 4"}));

    const auto proxy = payload->keyAtPath("Proxy");
    EXPECT_TRUE(proxy->isWritingOut());
    payload->keyAtPath("Proxy.Host")->setValue(plist::Value("h"));
    payload->keyAtPath("Proxy.Host")->setValue(PreferenceKeyValue());
    EXPECT_EQ(written().value("Proxy"), plist::Value(plist::Dictionary{})) << "still as the file gave it";
    proxy->setValue(PreferenceKeyValue());
    EXPECT_FALSE(written().contains("Proxy"));
    EXPECT_FALSE(proxy->isWritingOut());

    // A ghost's own value leaves when the key is set, as any held value does.
    payload->keyAtPath("Legacy")->setValue(plist::Value("typed"));
    EXPECT_FALSE(written().contains("Legacy"));
    EXPECT_EQ(written().value("LegacyOptions"), read.value("LegacyOptions"));
}

struct RowEdit {
    const char* name;
    std::function<Rows(Rows, const PreferenceKey::Pointer&)> edit;
    plist::Array expected;
};

// Rows "a", "b", 3 with held items a date (after "a") and data (after 3).
TEST_F(HeldValuesKeptTest, HeldItemsStayAfterTheRowTheyFollowed) {
    const plist::Value date = read.array("Entries")->at(1);
    const plist::Value data = read.array("Entries")->at(4);
    const auto appended = [](Rows rows, const PreferenceKey::Pointer& entries) {
        auto row = PreferenceKey::makeNew(entries->prototype().subkeys().first(), entries);
        row->setValue(plist::Value("c"));
        rows.append(row);
        return rows;
    };
    const RowEdit edits[] = {
        {"unchanged", [](Rows rows, const auto&) { return rows; }, {"a", date, "b", 3, data}},
        {"first row removed", [](Rows rows, const auto&) { return rows.mid(1); }, {date, "b", 3, data}},
        {"last row removed: after the nearest row left",
         [](Rows rows, const auto&) { return rows.mid(0, 2); },
         {"a", date, "b", data}},
        {"row moved to the end",
         [](Rows rows, const auto&) {
             return Rows{rows[1], rows[2], rows[0]};
         },
         {"b", 3, data, "a", date}},
        {"rows reversed",
         [](Rows rows, const auto&) {
             return Rows{rows[2], rows[1], rows[0]};
         },
         {3, data, "b", "a", date}},
        {"row appended", appended, {"a", date, "b", 3, data, "c"}},
        {"every row removed: held items first",
         [&](Rows, const auto& entries) { return appended({}, entries); },
         {date, data, "c"}},
    };
    for (const RowEdit& edit : edits) {
        SetUp();
        const auto entries = payload->keyAtPath("Entries");
        entries->setValue(PreferenceKeyValue(edit.edit(*entries->value().keyList(), entries)));
        EXPECT_EQ(written().value("Entries"), plist::Value(edit.expected)) << edit.name;
        // A second edit starts from where the first left the held items.
        entries->setValue(entries->value());
        EXPECT_EQ(written().value("Entries"), plist::Value(edit.expected)) << edit.name;
        EXPECT_EQ(entries->heldEntries().size(), 2) << edit.name;
    }
}

} // namespace
} // namespace quorlin
