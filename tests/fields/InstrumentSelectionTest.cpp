// Which instrument a key gets, in a form and in a table column, over a table
// of manifest keys of our own kept in tests/data/fields.

#include "FieldsTestSupport.h"

#include "fields/BooleanInstrumentController.h"
#include "fields/ComboBoxInstrumentController.h"
#include "fields/InstrumentController.h"
#include "fields/InstrumentFactory.h"
#include "fields/StringInstrumentController.h"

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using namespace quorlin::test;
using Types = InstrumentFactory::Types;
using Kind = PFMKeyPrototype::Kind;

TEST(InstrumentSelectionTest, EachCaseGetsItsInstrumentInFormAndTable) {
    const auto read = plist::PlistReader::read(readFile(testDataPath("fields/instrument-selection.plist")));
    ASSERT_TRUE(read);
    const plist::Array* cases = read->root.array();
    ASSERT_TRUE(cases && cases->size() > 20);
    for (const plist::Value& entry : *cases) {
        const plist::Dictionary& testCase = *entry.dictionary();
        SCOPED_TRACE(testCase.string("case")->toStdString());
        const auto prototype = PFMKeyPrototype::make(*testCase.dictionary("key"), false);
        ASSERT_TRUE(prototype);
        EXPECT_EQ(InstrumentFactory::rawValue(InstrumentFactory::type(*prototype, false)),
                  *testCase.string("form"));
        EXPECT_EQ(InstrumentFactory::rawValue(InstrumentFactory::type(*prototype, true)),
                  *testCase.string("table"));
    }
}

TEST(InstrumentSelectionTest, EveryTypeMakesItsOwnControllerAndNameRoundTrips) {
    for (int raw = int(Types::appSelector); raw <= int(Types::text); ++raw) {
        const auto type = Types(raw);
        const auto instrument = InstrumentFactory::makeInstrument(type);
        EXPECT_EQ(instrument->type(), type);
        EXPECT_EQ(InstrumentFactory::typeFromRawValue(InstrumentFactory::rawValue(type)), type);
    }
    EXPECT_FALSE(InstrumentFactory::typeFromRawValue("slider"));
}

TEST(InstrumentSelectionTest, WhatTheInstrumentsAccept) {
    const std::optional<QString> none;
    const std::optional<QString> hex = QStringLiteral("data-to-hex-string");
    const std::optional<QString> comma = QStringLiteral("strings-array-to-comma-delimited-string");
    const std::optional<QString> x500 = QStringLiteral("oid-and-value-arrays-to-x500-name");
    EXPECT_TRUE(StringInstrumentController::accepts(Kind::string, none));
    EXPECT_FALSE(StringInstrumentController::accepts(Kind::string, hex));
    EXPECT_TRUE(StringInstrumentController::accepts(Kind::data, none));
    EXPECT_TRUE(StringInstrumentController::accepts(Kind::data, hex));
    EXPECT_FALSE(StringInstrumentController::accepts(Kind::data, comma));
    EXPECT_TRUE(StringInstrumentController::accepts(Kind::array, comma));
    EXPECT_TRUE(StringInstrumentController::accepts(Kind::array, x500));
    EXPECT_FALSE(StringInstrumentController::accepts(Kind::array, none));
    EXPECT_FALSE(StringInstrumentController::accepts(Kind::integer, none));
    EXPECT_TRUE(BooleanInstrumentController::accepts(Kind::integer, none));
    EXPECT_FALSE(BooleanInstrumentController::accepts(Kind::real, none));
    EXPECT_TRUE(ComboBoxInstrumentController::accepts(Kind::string, none));
    EXPECT_FALSE(ComboBoxInstrumentController::accepts(Kind::data, none));
}

} // namespace
} // namespace quorlin
