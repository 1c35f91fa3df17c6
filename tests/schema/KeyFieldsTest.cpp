// The one-pass reading of a key's dictionary: every name the prototype reads
// is found, names it doesn't know are passed over, and descriptions get their
// written line breaks turned into real ones.
#include "schema/PFMKeyFields.h"
#include "schema/PFMKeyPrototype.h"

#include <gtest/gtest.h>

using namespace quorlin;
using plist::Dictionary;
using Field = PFMKeyFields::Field;

TEST(KeyFieldsTest, FindsEveryFieldByItsNameAndNothingElse) {
    Dictionary dictionary{{"pfm_unknown", 1}, {"pfm_typ", 2}, {"pfm_types", 3}, {"PFM_TYPE", 4}};
    for (int field = 0; field < int(Field::count); ++field)
        dictionary.insert(PFMKeyFields::keyName(Field(field)), qint64(100 + field));
    const PFMKeyFields fields(dictionary);
    for (int field = 0; field < int(Field::count); ++field)
        EXPECT_EQ(fields.integer(Field(field)), 100 + field)
            << PFMKeyFields::keyName(Field(field)).toStdString();

    const Dictionary fewer{{"pfm_typ", "string"}, {"pfm_name", "Host"}};
    const PFMKeyFields some(fewer);
    EXPECT_TRUE(some.value(Field::type).isNull());
    EXPECT_EQ(some.string(Field::name), QStringLiteral("Host"));
}

TEST(KeyFieldsTest, DescriptionsTurnWrittenLineBreaksIntoRealOnes) {
    const struct {
        const char* written;
        const char* read;
    } cases[] = {
        {"plain", "plain"},
        {"one\\ntwo", "one\ntwo"},
        {"\\n\\nboth ends\\n", "\n\nboth ends\n"},
        {"a backslash \\ alone", "a backslash \\ alone"},
        {"ends in a backslash\\", "ends in a backslash\\"},
        {"escaped \\\\n", "escaped \\\n"},
        {"\\t stays", "\\t stays"},
    };
    for (const auto& entry : cases) {
        const auto key = PFMKeyPrototype::make(
            Dictionary{{"pfm_name", "Key"}, {"pfm_type", "string"}, {"pfm_description", entry.written}},
            false);
        ASSERT_TRUE(key);
        EXPECT_EQ(key->descriptionLine(), QString::fromUtf8(entry.read)) << entry.written;
    }
}
