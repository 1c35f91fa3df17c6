// Items of the file that fit no row stay through the table's edits: next to
// the row they followed, and when every row is removed.

#include "FieldsTestSupport.h"

#include "fields/ArrayInstrumentController.h"

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using namespace quorlin::test;

TEST(HeldItemRows, TableEditsKeepTheFilesOtherItemsBesideTheirRows) {
    const plist::Value date{plist::Date{800000000}};
    const auto payload = payloadWith(
        plist::Array{keyTree("Mixed", "array",
                             {{"pfm_subkeys", plist::Array{itemTree("string"), itemTree("integer")}}})},
        {{"Mixed", plist::Array{"x", date, "y"}}});
    const auto writer = std::make_shared<RecordingWriter>();
    ArrayInstrumentController table(std::make_shared<FixedDateSource>(plist::Date{0}));
    table.setUnderlyingSubkeyPrototypeIndex(0);
    table.setWriter(writer);
    table.setRepresentedObject(payload->keyAtPath("Mixed"));
    const auto written = [&] { return payload->keyAtPath("Mixed")->writeOutValue(); };

    table.moveRow(0, 1);
    EXPECT_EQ(written(), plist::Value(plist::Array{"y", "x", date}));
    table.setSelection({0, 1});
    table.removeSelectedRows();
    EXPECT_EQ(written(), plist::Value(plist::Array{date}));
    EXPECT_EQ(payload->keyAtPath("Mixed")->heldEntries().size(), 1);
}

} // namespace
} // namespace quorlin
