// Tables of array keys: their columns (nested dictionaries flattened),
// rows per item prototype, cells in table mode on nested paths, and adding,
// removing, duplicating and moving rows through the writer.

#include "FieldsTestSupport.h"
#include "support/DataManifests.h"

#include "fields/ArrayInstrumentController.h"
#include "fields/CustomPlistInstrumentController.h"
#include "fields/StringInstrumentController.h"

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using namespace quorlin::test;
using Types = InstrumentFactory::Types;
using Outcome = ArrayInstrumentController::AddOutcome;

const plist::Date fixedNow{800000000};

class ArrayTablesTest : public ::testing::Test {
protected:
    void SetUp() override {
        payload = dataPayload("fields/array-tables.plist", {{"Names", plist::Array{"a", "b", "c"}},
                                                            {"Mixed", plist::Array{"x", 1, "y", 2}}});
    }
    std::unique_ptr<ArrayInstrumentController> table(const QString& key, int index = 0) {
        auto made = std::make_unique<ArrayInstrumentController>(std::make_shared<FixedDateSource>(fixedNow));
        made->setUnderlyingSubkeyPrototypeIndex(index);
        made->setWriter(writer);
        made->setRepresentedObject(payload->keyAtPath(key));
        return made;
    }
    QStringList columnIdentifiers(const ArrayInstrumentController& controller) {
        QStringList identifiers;
        for (const auto& column : controller.columns())
            identifiers.append(column.identifier);
        return identifiers;
    }

    Payload::Pointer payload;
    std::shared_ptr<RecordingWriter> writer = std::make_shared<RecordingWriter>();
};

TEST_F(ArrayTablesTest, AnArrayOfStringsIsOneColumnWithoutHeader) {
    const auto names = table("Names");
    EXPECT_FALSE(names->hasHeader());
    EXPECT_EQ(columnIdentifiers(*names), QStringList{ArrayInstrumentController::nonDictionaryArrayColumn});
    EXPECT_EQ(names->columns().first().properties.instrumentType, Types::string);
    EXPECT_EQ(names->rows().size(), 3);
    const auto cell = names->makeCellInstrument(ArrayInstrumentController::nonDictionaryArrayColumn, 1);
    ASSERT_TRUE(cell);
    EXPECT_TRUE(cell->tableCellMode());
    EXPECT_EQ(cell->representedObject(), names->rows().at(1));
    EXPECT_FALSE(names->makeCellInstrument("nowhere", 0));
    EXPECT_FALSE(names->makeCellInstrument(ArrayInstrumentController::nonDictionaryArrayColumn, 3));
}

TEST_F(ArrayTablesTest, NestedDictionariesFlattenIntoColumnsBySortingIndex) {
    const auto servers = table("Servers");
    EXPECT_TRUE(servers->hasHeader());
    EXPECT_EQ(columnIdentifiers(*servers),
              (QStringList{"Options.value.Verify", "Secure", "Host", "Since", "Tags", "Options.value.Port"}));
    const auto* secure = servers->column("Secure");
    EXPECT_EQ(secure->minimumWidth, 18);
    EXPECT_EQ(secure->properties.instrumentType, Types::boolean);
    EXPECT_EQ(servers->column("Host")->sortKey, "value.Host.value");
    EXPECT_TRUE(servers->column("Host")->comparesCaseInsensitively);
    EXPECT_EQ(servers->column("Host")->minimumWidth, 80);
    // A table never nests a table.
    EXPECT_EQ(servers->column("Tags")->properties.instrumentType, Types::customPlist);
    EXPECT_EQ(ArrayInstrumentController::nestedPath(servers->column("Options.value.Port")->properties),
              "value.Options.value.Port");
}

TEST_F(ArrayTablesTest, ANewRowIsNeverLeftUnsetWhereACellCantShowIt) {
    const auto servers = table("Servers");
    EXPECT_EQ(servers->addRow(), Outcome::added);
    EXPECT_EQ(servers->shouldEditRowAfterAdding(), 0);
    ASSERT_EQ(servers->rows().size(), 1);
    const plist::Value written = *payload->keyAtPath("Servers")->writeOutValue();
    const plist::Dictionary& row = *written.array()->first().dictionary();
    EXPECT_EQ(row.value("Secure"), plist::Value(false));
    EXPECT_EQ(row.value("Since"), plist::Value(fixedNow));
    EXPECT_FALSE(row.contains("Host"));
    // A boolean starts at its default; an integer cell can be empty and is.
    EXPECT_EQ(row.dictionary("Options")->value("Verify"), plist::Value(true));
    EXPECT_FALSE(row.dictionary("Options")->contains("Port"));
    EXPECT_EQ(servers->rowViewDidAppear(0), 0);
    EXPECT_FALSE(servers->rowViewDidAppear(0));

    // The cell of a nested column edits the nested key.
    const auto port = servers->makeCellInstrument("Options.value.Port", 0);
    EXPECT_EQ(port->representedObject()->name(), "Port");
    RecordingControl control;
    port->attachControl(&control);
    EXPECT_TRUE(control.shown.isNull());
    port->valueBinding()->controlValueDidChange(plist::Value(8443));
    EXPECT_EQ(writer->identities.last(), "Servers/0/Options/Port");
    EXPECT_EQ(payload->keyAtPath("Servers")
                  ->writeOutValue()
                  ->array()
                  ->first()
                  .dictionary()
                  ->dictionary("Options")
                  ->value("Port"),
              plist::Value(8443));
}

TEST_F(ArrayTablesTest, FreeFormDictionariesAreOnePlistCellWithoutButtons) {
    const auto pairs = table("Pairs");
    EXPECT_FALSE(pairs->hasHeader());
    EXPECT_EQ(pairs->columns().first().properties.instrumentType, Types::customPlist);
    EXPECT_EQ(pairs->addRow(), Outcome::needsPlistFile);
    pairs->addChosenPlist(plist::Dictionary{{"k", "v"}});
    ASSERT_EQ(pairs->rows().size(), 1);
    const auto cell = pairs->makeCellInstrument(ArrayInstrumentController::nonDictionaryArrayColumn, 0);
    const auto* plistCell = dynamic_cast<CustomPlistInstrumentController*>(cell.get());
    ASSERT_TRUE(plistCell);
    EXPECT_FALSE(plistCell->showingButtons());
    EXPECT_EQ(payload->keyAtPath("Pairs")->writeOutValue(),
              plist::Value(plist::Array{plist::Dictionary{{"k", "v"}}}));
}

TEST_F(ArrayTablesTest, AppIdentifiersComeFromTheSheet) {
    const auto apps = table("Apps");
    EXPECT_EQ(apps->addRow(), Outcome::needsAppSelection);
    EXPECT_TRUE(payload->keyAtPath("Apps")->value().isAbsent());
    apps->addChosenBundleId(QString());
    EXPECT_TRUE(payload->keyAtPath("Apps")->value().isAbsent());
    apps->addChosenBundleId("com.example.app");
    EXPECT_EQ(payload->keyAtPath("Apps")->writeOutValue(), plist::Value(plist::Array{"com.example.app"}));
}

TEST_F(ArrayTablesTest, RowsAreRemovedDuplicatedAndMoved) {
    const auto names = table("Names");
    EXPECT_FALSE(names->canRemoveOrDuplicate());
    names->setSelection({2, 0});
    EXPECT_TRUE(names->canRemoveOrDuplicate());
    names->duplicateSelectedRows();
    EXPECT_EQ(payload->keyAtPath("Names")->writeOutValue(),
              plist::Value(plist::Array{"a", "b", "c", "a", "c"}));
    names->moveRow(4, 0);
    EXPECT_EQ(payload->keyAtPath("Names")->writeOutValue(),
              plist::Value(plist::Array{"c", "a", "b", "c", "a"}));
    names->setSelection({0, 1, 2, 3});
    names->removeSelectedRows();
    EXPECT_EQ(payload->keyAtPath("Names")->writeOutValue(), plist::Value(plist::Array{"a"}));
    EXPECT_TRUE(names->selection().isEmpty());
    // The last row gone, the key is unset and doesn't write out.
    names->setSelection({0});
    names->removeSelectedRows();
    EXPECT_TRUE(payload->keyAtPath("Names")->value().isAbsent());
    // Structural edits never merge with typing.
    for (const QString& identity : writer->identities)
        EXPECT_TRUE(identity.isEmpty());
}

TEST_F(ArrayTablesTest, EachItemPrototypeHasItsOwnTable) {
    const auto strings = table("Mixed", 0);
    const auto numbers = table("Mixed", 1);
    EXPECT_EQ(strings->rows().size(), 2);
    EXPECT_EQ(numbers->rows().size(), 2);
    EXPECT_EQ(numbers->columns().first().properties.instrumentType, Types::integer);
    numbers->setSelection({1});
    numbers->removeSelectedRows();
    EXPECT_EQ(payload->keyAtPath("Mixed")->writeOutValue(), plist::Value(plist::Array{"x", 1, "y"}));
    numbers->addRow();
    EXPECT_EQ(strings->rows().size(), 2);
    EXPECT_EQ(numbers->rows().size(), 2);
    EXPECT_FALSE(table("Mixed", 2)->underlyingSubkeyPrototype());
    EXPECT_TRUE(table("Mixed", 2)->columns().isEmpty());
}

TEST_F(ArrayTablesTest, TabAndDoubleClickPastTheEndAddARow) {
    const auto names = table("Names");
    EXPECT_FALSE(names->tabPastEndOfCell(0, 0));
    EXPECT_EQ(names->rows().size(), 3);
    EXPECT_TRUE(names->tabPastEndOfCell(2, 0));
    EXPECT_EQ(names->rows().size(), 4);
    EXPECT_EQ(names->rowViewDidAppear(3), 0);
    EXPECT_FALSE(names->doubleClick(1));
    EXPECT_TRUE(names->doubleClick(-1));
    EXPECT_EQ(names->rows().size(), 5);
}

} // namespace
} // namespace quorlin
