// The value faults of each kind of key, with the words the form shows.

#include "ValidationTestSupport.h"

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using namespace quorlin::test;

const QString rangeMin = QStringLiteral("pfm_range_min");
const QString rangeMax = QStringLiteral("pfm_range_max");
const QString rangeList = QStringLiteral("pfm_range_list");
const QString subkeys = QStringLiteral("pfm_subkeys");

// One key named "Value" of the given type and rules, holding `value`.
QString errorFor(const QString& type, const plist::Dictionary& rules, const plist::Value& value) {
    const auto payload =
        payloadWith(plist::Array{keyTree("Value", type, rules)},
                    value.isNull() ? plist::Dictionary{} : plist::Dictionary{{"Value", value}});
    return valueErrorAt(payload, QStringLiteral("Value"));
}

TEST(ValueErrorsTest, RequirementWantsAValueButNotAFilledArray) {
    EXPECT_EQ(errorFor("string", requiredAlways(), plist::Value()), "This field must have a value set.");
    EXPECT_EQ(errorFor("string", requiredAlways(), ""), "This field must have a value set.");
    EXPECT_EQ(errorFor("data", requiredAlways(), QByteArray()), "This field must have a value set.");
    EXPECT_EQ(errorFor("integer", requiredAlways(), 0), "");
    EXPECT_EQ(errorFor("boolean", requiredAlways(), false), "");
    EXPECT_EQ(errorFor("array", requiredAlways(), plist::Array{}), "");
    EXPECT_EQ(errorFor("array", requiredAlways({{rangeMin, 1}}), plist::Array{}),
              "The array must contain at least 1 item(s), but it contains 0.");
    // Neither required nor set: no ranges apply.
    EXPECT_EQ(errorFor("integer", {{rangeMin, 5}}, plist::Value()), "");
    EXPECT_EQ(errorFor("string", {{rangeMin, 5}}, plist::Value()), "");
}

TEST(ValueErrorsTest, ExcludedKeyNeedsNoValue) {
    const plist::Dictionary excludeWhenOff{
        {"pfm_target_conditions",
         plist::Array{plist::Dictionary{{"pfm_target", "Enable"}, {"pfm_range_list", plist::Array{false}}}}}};
    const auto payload =
        payloadWith(plist::Array{keyTree("Enable", "boolean"),
                                 keyTree("Server", "string",
                                         requiredAlways({{"pfm_exclude", plist::Array{excludeWhenOff}}}))},
                    {{"Enable", false}});
    EXPECT_EQ(valueErrorAt(payload, "Server"), "");
    payload->keyAtPath("Enable")->setValue(plist::Value(true));
    EXPECT_EQ(valueErrorAt(payload, "Server"), "This field must have a value set.");
}

TEST(ValueErrorsTest, IntegerAndRealBounds) {
    const plist::Dictionary bounds{{rangeMin, 1}, {rangeMax, 10}};
    EXPECT_EQ(errorFor("integer", bounds, 0), "The entered number is lower than the minimum for this field.");
    EXPECT_EQ(errorFor("integer", bounds, 11),
              "The entered number is higher than the maximum for this field.");
    EXPECT_EQ(errorFor("integer", bounds, 1), "");
    EXPECT_EQ(errorFor("integer", bounds, 10), "");
    EXPECT_EQ(errorFor("real", bounds, 0.5), "The entered number is lower than the minimum for this field.");
    EXPECT_EQ(errorFor("real", bounds, 10.01),
              "The entered number is higher than the maximum for this field.");
    EXPECT_EQ(errorFor("real", bounds, 9.99), "");
    // A value of a foreign type is held from the file, and says so rather than judging its bounds.
    EXPECT_EQ(errorFor("integer", bounds, "eleven"),
              "The file holds a string here, where the manifest wants an "
              "integer; it is kept as it is until you set or remove it.");
}

TEST(ValueErrorsTest, RangeListsOfEachKind) {
    const QString outOfRange = "The entered information is not among the allowed options for this field.";
    EXPECT_EQ(errorFor("integer", {{rangeList, plist::Array{1, 2, 4}}}, 3), outOfRange);
    EXPECT_EQ(errorFor("integer", {{rangeList, plist::Array{1, 2, 4}}}, 4), "");
    EXPECT_EQ(errorFor("real", {{rangeList, plist::Array{0.5, 1.5}}}, 1.0), outOfRange);
    EXPECT_EQ(errorFor("real", {{rangeList, plist::Array{0.5, 1.5}}}, 1.5), "");
    EXPECT_EQ(errorFor("string", {{rangeList, plist::Array{"low", "high"}}}, "Low"), outOfRange);
    EXPECT_EQ(errorFor("string", {{rangeList, plist::Array{"low", "high"}}}, "high"), "");
    // A list of the wrong type is no rule at all.
    EXPECT_EQ(errorFor("string", {{rangeList, plist::Array{1, 2}}}, "high"), "");

    EXPECT_EQ(errorFor("boolean", {{rangeList, plist::Array{false}}}, true),
              "This field's value can only be 'false'.");
    EXPECT_EQ(errorFor("boolean", {{rangeList, plist::Array{true}}}, false),
              "This field's value can only be 'true'.");
    EXPECT_EQ(errorFor("boolean", {{rangeList, plist::Array{false}}}, false), "");
    EXPECT_EQ(errorFor("boolean", {{rangeList, plist::Array{true, true}}}, false), outOfRange);
}

TEST(ValueErrorsTest, StringFormatMustMatchExactlyOnce) {
    const QString incorrect = "The entered information is not in the correct format for this field.";
    const plist::Dictionary digits{{"pfm_format", "[0-9]+"}};
    EXPECT_EQ(errorFor("string", digits, "2024"), "");
    EXPECT_EQ(errorFor("string", digits, "abc"), incorrect);
    EXPECT_EQ(errorFor("string", digits, "12-34"), incorrect); // two matches
    EXPECT_EQ(errorFor("string", {{"pfm_format", "^[a-z]+\\.[a-z]+$"}}, "example.com"), "");
    EXPECT_EQ(errorFor("string", {{"pfm_format", "^[a-z]+\\.[a-z]+$"}}, "example"), incorrect);
    // The search spans as many UTF-16 units as the string has characters, so
    // a combining accent hides the string's last unit from the pattern.
    EXPECT_EQ(errorFor("string", {{"pfm_format", "x$"}}, QString::fromUtf8("e\xCC\x81x")), incorrect);
    EXPECT_EQ(errorFor("string", {{"pfm_format", "x$"}}, "ex"), "");
    // A pattern that doesn't compile is skipped, and the later tests still run.
    EXPECT_EQ(errorFor("string", {{"pfm_format", "([a-z"}, {rangeMax, 2}}, "abc"),
              "The string has 3 character(s), which is larger than the maximum of 2.");
}

TEST(ValueErrorsTest, StringLengthCountsWhatTheReaderSees) {
    const plist::Dictionary bounds{{rangeMin, 2}, {rangeMax, 3}};
    EXPECT_EQ(errorFor("string", bounds, "a"),
              "The string has 1 character(s), which is smaller than the minimum of 2.");
    EXPECT_EQ(errorFor("string", bounds, "abcd"),
              "The string has 4 character(s), which is larger than the maximum of 3.");
    // Three flags of two surrogate pairs each, and an e with a combining accent.
    EXPECT_EQ(errorFor("string", bounds,
                       QString::fromUtf8("\xF0\x9F\x87\xAB\xF0\x9F\x87\xB7"
                                         "\xF0\x9F\x87\xA9\xF0\x9F\x87\xAA"
                                         "\xF0\x9F\x87\xAE\xF0\x9F\x87\xB9")),
              "");
    EXPECT_EQ(errorFor("string", bounds, QString::fromUtf8("e\xCC\x81")),
              "The string has 1 character(s), which is smaller than the minimum of 2.");
}

TEST(ValueErrorsTest, DataSizesInFileUnits) {
    EXPECT_EQ(errorFor("data", {{rangeMin, 2000}}, QByteArray(1400, 'x')),
              "The data size is 1 KB, which is smaller than the minimum of 2 KB.");
    EXPECT_EQ(errorFor("data", {{rangeMin, 10}}, QByteArray(1, 'x')),
              "The data size is 1 byte, which is smaller than the minimum of 10 bytes.");
    EXPECT_EQ(errorFor("data", {{rangeMax, 1500000}}, QByteArray(2000000, 'x')),
              "The data size is 2 MB, which is larger than the maximum of 1.5 MB.");
    EXPECT_EQ(errorFor("data", {{rangeMin, 1}, {rangeMax, 4}}, QByteArray(4, 'x')), "");
}

TEST(ValueErrorsTest, ArraySizesAndInvalidRows) {
    const plist::Dictionary shortStrings{{subkeys, plist::Array{itemTree("string", {{rangeMax, 3}})}}};
    auto rules = shortStrings;
    rules.insert(rangeMax, 2);
    EXPECT_EQ(errorFor("array", rules, plist::Array{"a", "b", "c"}),
              "The array must contain no more than 2 item(s), but it contains 3.");
    EXPECT_EQ(errorFor("array", shortStrings, plist::Array{"a", "long one"}),
              "One of the table items is invalid.");
    EXPECT_EQ(errorFor("array", shortStrings, plist::Array{"long one", "b", "long two"}),
              "2 items of the table are invalid.");
    auto x500 = shortStrings;
    x500.insert("pfm_quorlin_control_type", "x500-arr");
    const auto payload = payloadWith(plist::Array{keyTree("Value", "array", x500)},
                                     {{"Value", plist::Array{"long one", "b", "long two"}}});
    ASSERT_EQ(payload->keyAtPath("Value")->prototype().controlType(), QStringLiteral("x500-arr"));
    EXPECT_EQ(valueErrorAt(payload, "Value"),
              "The entered information does not represent a valid X.500 name string.");
}

TEST(ValueErrorsTest, RepetitionBoundsOfItemPrototypes) {
    const plist::Dictionary atLeastTwo{
        {subkeys, plist::Array{itemTree("string", {{"pfm_repetition_min", 2}})}}};
    EXPECT_EQ(errorFor("array", atLeastTwo, plist::Array{"one"}),
              "The array contains less than the minimum number of 2 item(s)");
    EXPECT_EQ(errorFor("array", atLeastTwo, plist::Array{"one", "two"}), "");

    const plist::Dictionary twoKinds{
        {subkeys, plist::Array{itemTree("string", {{"pfm_title", "Name"}, {"pfm_repetition_max", 1}}),
                               itemTree("integer", {{"pfm_repetition_min", 1}})}}};
    EXPECT_EQ(errorFor("array", twoKinds, plist::Array{"a", "b", 1}),
              "The array contains more than the maximum number of 1 Name item(s)");
    EXPECT_EQ(errorFor("array", twoKinds, plist::Array{"a"}),
              "The array contains less than the minimum number of 1 certain item(s)");
    EXPECT_EQ(errorFor("array", twoKinds, plist::Array{"a", 1}), "");
}

TEST(ValueErrorsTest, DictionarySpeaksForItsSubkeys) {
    const plist::Dictionary rules{
        {subkeys, plist::Array{keyTree("Port", "integer", {{rangeMax, 100}}), keyTree("Host", "string")}}};
    EXPECT_EQ(errorFor("dictionary", rules, plist::Dictionary{{"Port", 443}, {"Host", "a"}}),
              "One of the dictionary items is invalid.");
    EXPECT_EQ(errorFor("dictionary", rules, plist::Dictionary{{"Port", 80}}), "");
}

} // namespace
} // namespace quorlin
