// The value faults of each kind of key, with the words the form shows: a
// table of cases in tests/data/validation/value-errors.plist, each a key
// "Value" of a type and rules, the value it holds and the fault expected.

#include "ValidationTestSupport.h"

#include "plist/PlistReader.h"

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using namespace quorlin::test;

TEST(ValueErrorsTest, EachCaseOfTheTableGivesItsFault) {
    const auto read = plist::PlistReader::read(readFile(testDataPath("validation/value-errors.plist")));
    ASSERT_TRUE(read && read->root.array());
    ASSERT_GT(read->root.array()->size(), 50);
    for (const plist::Value& entry : *read->root.array()) {
        const plist::Dictionary& test = *entry.dictionary();
        SCOPED_TRACE(test.string("case")->toStdString());
        plist::Dictionary values;
        // Data is given by its size, filled with one byte.
        if (const auto bytes = test.value("bytes").toInteger())
            values.insert("Value", QByteArray(*bytes, 'x'));
        else if (test.contains("value"))
            values.insert("Value", test.value("value"));
        const auto payload = payloadWith(
            plist::Array{keyTree("Value", *test.string("type"), *test.dictionary("rules"))}, values);
        EXPECT_EQ(valueErrorAt(payload, QStringLiteral("Value")), *test.string("error"));
    }
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

} // namespace
} // namespace quorlin
