// The conversions between stored values and what controls show: every one
// found by its name, round trips of what each accepts, and nothing (never a
// crash) for what it can't convert.

#include "FieldsTestSupport.h"
#include "support/DataManifests.h"

#include "fields/ArrayToX500NameStringValueTransformer.h"
#include "fields/DataToHexStringValueTransformer.h"
#include "fields/IntegerNSNumberToBoolNSNumberValueTransformer.h"
#include "fields/NumberOfRangeListToPrettyStringValueTransformer.h"
#include "fields/NumberRangeListToPrettyListValueTransformer.h"
#include "fields/OptionalStringToPopUpButtonIndexValueTransformer.h"
#include "fields/StringOfRangeListToPrettyStringValueTransformer.h"
#include "fields/StringRangeListToPrettyListValueTransformer.h"
#include "fields/StringsArrayToCommaDelimitedStringValueTransformer.h"
#include "fields/ValueTransformerRegistry.h"

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using namespace quorlin::test;

plist::Value plainOf(const PreferenceKeyValue& value) {
    const plist::Value* plain = value.plistValue();
    return plain ? *plain : plist::Value();
}

std::shared_ptr<const ValueTransformer> named(const char* name) {
    auto transformer = ValueTransformerRegistry::transformer(QString::fromLatin1(name));
    EXPECT_TRUE(transformer) << name;
    return transformer;
}

const PrettyRangeList labels(plist::Dictionary{{"1", "One"}, {"2", "Two"}, {"a", "Alpha"}, {"b", "Alpha"}});

struct RoundTrip {
    const char* description;
    std::shared_ptr<const ValueTransformer> transformer;
    plist::Value stored;
    plist::Value shown;
};

TEST(ValueTransformersTest, EveryTransformerIsFoundByItsClassName) {
    const QStringList expected{"AppSelectorResultTypeToLocalizedStringValueTransformer",
                               "ArrayToX500NameStringValueTransformer",
                               "DataToHexStringValueTransformer",
                               "IntegerNSNumberToBoolNSNumberValueTransformer",
                               "IntegerToStringValueTransformer",
                               "NumberArrayToStringArrayValueTransformer",
                               "NumberOfRangeListToPrettyStringValueTransformer",
                               "NumberRangeListToPrettyListValueTransformer",
                               "OptionalStringToPopUpButtonIndexValueTransformer",
                               "RealToStringValueTransformer",
                               "StringEmptinessToBooleanValueTransformer",
                               "StringOfRangeListToPrettyStringValueTransformer",
                               "StringRangeListToPrettyListValueTransformer",
                               "StringsArrayToCommaDelimitedStringValueTransformer",
                               "TextStyleAttributedStringToCocoaAttributedStringValueTransformer",
                               "UTF8DataToStringValueTransformer"};
    EXPECT_EQ(ValueTransformerRegistry::names(), expected);
    for (const QString& name : expected)
        EXPECT_EQ(ValueTransformerRegistry::transformer(name)->name(), name);
    EXPECT_FALSE(ValueTransformerRegistry::transformer(QStringLiteral("NoSuchValueTransformer")));
}

TEST(ValueTransformersTest, ScalarTransformersRoundTripWhatTheyAccept) {
    const auto switchOf5 = std::make_shared<IntegerNSNumberToBoolNSNumberValueTransformer>(5);
    const auto pretty = std::make_shared<NumberOfRangeListToPrettyStringValueTransformer>(labels, false);
    const auto prettyReal = std::make_shared<NumberOfRangeListToPrettyStringValueTransformer>(
        PrettyRangeList(plist::Dictionary{{"0.5", "Half"}}), true);
    const auto prettyString = std::make_shared<StringOfRangeListToPrettyStringValueTransformer>(labels);
    const auto prettyList = std::make_shared<StringRangeListToPrettyListValueTransformer>(labels);
    const auto popUp = std::make_shared<OptionalStringToPopUpButtonIndexValueTransformer>(
        QStringList{"", "first", "second"}, 0);
    const QByteArray bytes("\xab\x10\xff", 3);
    const RoundTrip cases[] = {
        {"integer", named("IntegerToStringValueTransformer"), plist::Value(42), "42"},
        {"negative integer", named("IntegerToStringValueTransformer"), plist::Value(-7), "-7"},
        {"real", named("RealToStringValueTransformer"), plist::Value(0.5), "0.5"},
        {"UTF-8 data", named("UTF8DataToStringValueTransformer"),
         plist::Value(QString("h\u00e9llo").toUtf8()), QString("h\u00e9llo")},
        {"empty UTF-8 data", named("UTF8DataToStringValueTransformer"), plist::Value(QByteArray()),
         QString()},
        {"hex", named("DataToHexStringValueTransformer"), plist::Value(bytes), "ab10ff"},
        {"switch off", switchOf5, plist::Value(0), false},
        {"switch on", switchOf5, plist::Value(5), true},
        {"labelled number", pretty, plist::Value(2), "Two"},
        {"labelled real", prettyReal, plist::Value(0.5), "Half"},
        {"labelled string", prettyString, "a", "Alpha"},
        {"string without label", prettyString, "zed", "zed"},
        {"string list", prettyList, plist::Array{"a", "zed", 5}, plist::Array{"Alpha", "zed", 5}},
        {"pop-up title", popUp, "second", plist::Value(2)},
    };
    for (const RoundTrip& trip : cases) {
        SCOPED_TRACE(trip.description);
        EXPECT_EQ(trip.transformer->transformedValue(trip.stored), trip.shown);
        ASSERT_TRUE(trip.transformer->allowsReverseTransformation());
        EXPECT_EQ(plainOf(trip.transformer->reverseTransformedValue(trip.shown)), trip.stored);
    }
}

TEST(ValueTransformersTest, OneWayConversionsOfListsAndWords) {
    EXPECT_EQ(named("NumberArrayToStringArrayValueTransformer")
                  ->transformedValue(plist::Value(plist::Array{1, "x", 2.5, true})),
              plist::Value(plist::Array{"1", "2.5", "1"}));
    const NumberRangeListToPrettyListValueTransformer prettyNumbers(labels);
    EXPECT_EQ(prettyNumbers.transformedValue(plist::Value(plist::Array{1, 3})),
              plist::Value(plist::Array{"One", "3"}));
    EXPECT_FALSE(prettyNumbers.allowsReverseTransformation());
    const auto words = named("AppSelectorResultTypeToLocalizedStringValueTransformer");
    EXPECT_EQ(words->transformedValue(plist::Value("systemApp")), plist::Value("System App"));
    EXPECT_EQ(words->transformedValue(plist::Value("storeApp")), plist::Value("Store App"));
    EXPECT_EQ(words->transformedValue(plist::Value("bundleId")), plist::Value("Bundle Identifier"));
    EXPECT_TRUE(words->transformedValue(plist::Value("other")).isNull());
    const auto emptiness = named("StringEmptinessToBooleanValueTransformer");
    EXPECT_EQ(emptiness->transformedValue(plist::Value(QString())), plist::Value(true));
    EXPECT_EQ(emptiness->transformedValue(plist::Value("x")), plist::Value(false));
    EXPECT_EQ(emptiness->transformedValue(PreferenceKeyValue()), plist::Value(false));
}

TEST(ValueTransformersTest, TextThatIsNotAValueGivesNothing) {
    const auto hex = named("DataToHexStringValueTransformer");
    EXPECT_EQ(plainOf(hex->reverseTransformedValue("0xAB")), plist::Value(QByteArray("\xab", 1)));
    EXPECT_EQ(plainOf(hex->reverseTransformedValue("ab")), plist::Value(QByteArray("\xab", 1)));
    for (const char* refused : {"abc", "", "0x", "zz", "a g0"})
        EXPECT_TRUE(hex->reverseTransformedValue(plist::Value(refused)).isAbsent()) << refused;
    // Bytes below 0x10 lose their padding on the way out.
    EXPECT_EQ(hex->transformedValue(plist::Value(QByteArray("\x0a\xff", 2))), plist::Value("aff"));

    EXPECT_TRUE(named("UTF8DataToStringValueTransformer")
                    ->transformedValue(plist::Value(QByteArray("\xff\xfe\x41", 3)))
                    .isNull());
    // Single precision, as the field's number holds it.
    EXPECT_EQ(plainOf(named("RealToStringValueTransformer")->reverseTransformedValue("0.1")),
              plist::Value(double(0.1f)));
    EXPECT_EQ(plainOf(named("IntegerToStringValueTransformer")->reverseTransformedValue("12abc")),
              plist::Value(12));

    const NumberOfRangeListToPrettyStringValueTransformer pretty(labels, false);
    EXPECT_EQ(pretty.transformedValue(plist::Value(3)), plist::Value("3"));
    EXPECT_TRUE(pretty.reverseTransformedValue("3").isAbsent());
    // A label two values share reads back as the first of them.
    EXPECT_EQ(
        plainOf(StringOfRangeListToPrettyStringValueTransformer(labels).reverseTransformedValue("Alpha")),
        plist::Value("a"));

    const OptionalStringToPopUpButtonIndexValueTransformer popUp(QStringList{"", "first"}, 0);
    EXPECT_EQ(popUp.transformedValue(PreferenceKeyValue()), plist::Value(0));
    EXPECT_TRUE(popUp.reverseTransformedValue(plist::Value(0)).isAbsent());
    EXPECT_TRUE(popUp.reverseTransformedValue(plist::Value(2)).isAbsent());
    EXPECT_TRUE(popUp.transformedValue(plist::Value("missing")).isNull());

    const IntegerNSNumberToBoolNSNumberValueTransformer switchOf5(5);
    EXPECT_EQ(switchOf5.transformedValue(plist::Value(1)), plist::Value(true));
    EXPECT_EQ(plainOf(switchOf5.reverseTransformedValue(true)), plist::Value(5));
}

// Whatever a control or a stored value holds, each transformer answers
// without failing; a date is nothing any of them converts.
TEST(ValueTransformersTest, ValuesOfTheWrongClassGiveNothing) {
    const plist::Value date(plist::Date{100});
    const PreferenceKeyValue oddStored[] = {PreferenceKeyValue(), PreferenceKeyValue(date),
                                            PreferenceKeyValue(PreferenceKey::KeyList()),
                                            PreferenceKeyValue(PreferenceKey::KeyMap())};
    for (const QString& name : ValueTransformerRegistry::names()) {
        SCOPED_TRACE(name.toStdString());
        const auto transformer = ValueTransformerRegistry::transformer(name);
        const bool answersFalse = name == QLatin1String("StringEmptinessToBooleanValueTransformer");
        for (const PreferenceKeyValue& stored : oddStored) {
            const plist::Value shown = transformer->transformedValue(stored);
            if (answersFalse) {
                EXPECT_EQ(shown, plist::Value(false));
            } else if (!stored.keyList()) {
                EXPECT_TRUE(shown.isNull()) << shown.debugDescription().toStdString();
            }
        }
        if (transformer->allowsReverseTransformation()) {
            EXPECT_TRUE(transformer->reverseTransformedValue(date).isAbsent());
            EXPECT_TRUE(transformer->reverseTransformedValue(plist::Value()).isAbsent());
        }
    }
}

class ArrayTransformersTest : public ::testing::Test {
protected:
    void SetUp() override { payload = dataPayload("fields/array-transformers.plist"); }
    StringsArrayToCommaDelimitedStringValueTransformer commaList(const QString& name) {
        const auto key = payload->keyAtPath(name);
        return StringsArrayToCommaDelimitedStringValueTransformer(key->prototypePointer(), key);
    }
    Payload::Pointer payload;
};

TEST_F(ArrayTransformersTest, CommaListsSplitTrimAndJoin) {
    const auto names = payload->keyAtPath("Names");
    const auto transformer = commaList("Names");
    const PreferenceKeyValue items = transformer.reverseTransformedValue(",,  a , b,, \t");
    ASSERT_TRUE(items.keyList());
    ASSERT_EQ(items.keyList()->size(), 2);
    EXPECT_EQ(items.keyList()->at(0)->parentKey(), names);
    names->setValue(items);
    EXPECT_EQ(names->writeOutValue(), plist::Value(plist::Array{"a", "b"}));
    EXPECT_EQ(transformer.transformedValue(names->value()), plist::Value("a, b"));
    // A newline is not a blank: it stays in the item.
    const auto kept = transformer.reverseTransformedValue("a\n");
    EXPECT_EQ(kept.keyList()->at(0)->value().plistValue()->toString(), QString("a\n"));
}

TEST_F(ArrayTransformersTest, AnEmptyListIsKeptOnlyWhenRequired) {
    EXPECT_TRUE(commaList("Names").reverseTransformedValue("").isAbsent());
    EXPECT_TRUE(commaList("Names").reverseTransformedValue(plist::Value(3)).isAbsent());
    const auto required = commaList("Hosts").reverseTransformedValue(" , ");
    ASSERT_TRUE(required.keyList());
    EXPECT_TRUE(required.keyList()->isEmpty());
    // Without a string item prototype nothing can be made.
    const StringsArrayToCommaDelimitedStringValueTransformer bare(
        payload->keyAtPath("Subject")->prototypePointer());
    EXPECT_FALSE(bare.stringPrototype());
    EXPECT_TRUE(bare.reverseTransformedValue("a").isAbsent());
}

TEST_F(ArrayTransformersTest, SubjectNamesRoundTripThroughSlashes) {
    const auto subject = payload->keyAtPath("Subject");
    const ArrayToX500NameStringValueTransformer transformer(subject->prototypePointer(), subject);
    subject->setValue(transformer.reverseTransformedValue("/C=US/O=Example/CN=Name"));
    const plist::Array expected{plist::Array{plist::Array{"C", "US"}},
                                plist::Array{plist::Array{"O", "Example"}},
                                plist::Array{plist::Array{"CN", "Name"}}};
    EXPECT_EQ(subject->writeOutValue(), plist::Value(expected));
    EXPECT_EQ(transformer.transformedValue(subject->value()), plist::Value("/C=US/O=Example/CN=Name"));

    subject->setValue(transformer.reverseTransformedValue("/CN=a=b/CN//=x"));
    const plist::Array pieces{plist::Array{plist::Array{"CN", "a=b"}}, plist::Array{plist::Array{"CN", ""}},
                              plist::Array{plist::Array{"x", ""}}};
    EXPECT_EQ(subject->writeOutValue(), plist::Value(pieces));
    EXPECT_TRUE(transformer.reverseTransformedValue("//").isAbsent());
    EXPECT_TRUE(ArrayToX500NameStringValueTransformer().reverseTransformedValue("/CN=x").isAbsent());
}

} // namespace
} // namespace quorlin
