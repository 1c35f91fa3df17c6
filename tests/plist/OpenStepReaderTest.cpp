#include "plist/OpenStepReader.h"
#include "support/DataTrees.h"

#include <gtest/gtest.h>

#include <QStringEncoder>

using namespace quorlin::plist;

namespace {

Value readOrDie(const QByteArray& text) {
    const auto read = OpenStepReader::read(text);
    EXPECT_TRUE(read.hasValue()) << text.left(200).toStdString() << "\n  -> "
                                 << (read ? "" : read.error().toString().toStdString());
    return read ? *read : Value();
}

ParseError errorOf(const QByteArray& text, const ReadLimits& limits = {}) {
    const auto read = OpenStepReader::read(text, limits);
    EXPECT_FALSE(read.hasValue()) << text.left(200).toStdString() << "\n  read as "
                                  << (read ? read->debugDescription().toStdString() : "");
    return read ? ParseError{} : read.error();
}

} // namespace

TEST(OpenStepValues, StringsQuotedAndUnquoted) {
    EXPECT_EQ(readOrDie("\"double quoted\""), Value("double quoted"));
    EXPECT_EQ(readOrDie("'single quoted'"), Value("single quoted"));
    EXPECT_EQ(readOrDie("\"it's\""), Value("it's"));
    EXPECT_EQ(readOrDie("'say \"hi\"'"), Value("say \"hi\""));
    EXPECT_EQ(readOrDie("''"), Value(QString()));
}

TEST(OpenStepValues, UnquotedStringsTakeTheirWholeCharacterSet) {
    EXPECT_EQ(readOrDie("a_b$c+d/e:f.g-h0123456789XYZ"), Value("a_b$c+d/e:f.g-h0123456789XYZ"));
    // No numbers or booleans in this form: they are strings.
    EXPECT_EQ(readOrDie("( 1, -2.5, YES, true, 0x1F )"), Value(Array{"1", "-2.5", "YES", "true", "0x1F"}));
    // Slashes inside an unquoted string are not comments.
    EXPECT_EQ(readOrDie("{ url = http://example.com/a//b; }"),
              Value(Dictionary{{"url", "http://example.com/a//b"}}));
}

TEST(OpenStepValues, DataWithSpaceBetweenPairs) {
    EXPECT_EQ(readOrDie("<0fbd77>"), Value(QByteArray("\x0F\xBD\x77")));
    EXPECT_EQ(readOrDie("< 0FBD\n\t77 00 >"), Value(QByteArray("\x0F\xBD\x77\x00", 4)));
    EXPECT_EQ(readOrDie("<>"), Value(QByteArray()));
}

TEST(OpenStepValues, ArraysWithAndWithoutTrailingComma) {
    EXPECT_EQ(readOrDie("()"), Value(Array{}));
    EXPECT_EQ(readOrDie("( a )"), Value(Array{"a"}));
    EXPECT_EQ(readOrDie("(a, \"b\", <00>)"), Value(Array{"a", "b", QByteArray(1, '\0')}));
    EXPECT_EQ(readOrDie("(a, b, )"), Value(Array{"a", "b"}));
}

TEST(OpenStepValues, DictionariesAndNesting) {
    EXPECT_EQ(readOrDie("{}"), Value(Dictionary{}));
    const Value expected(Dictionary{
        {"name", "Wi-Fi"},
        {"quoted key", "v"},
        {"list", Array{"one", Dictionary{{"inner", Array{}}}, Array{Array{"deep"}}}},
        {"empty", Dictionary{}},
        {"bytes", QByteArray("\xCA\xFE")},
    });
    EXPECT_EQ(readOrDie("{\n"
                        "  name = Wi-Fi;\n"
                        "  \"quoted key\" = 'v';\n"
                        "  list = ( one, { inner = (); }, ((deep)) );\n"
                        "  empty = {};\n"
                        "  bytes = <cafe>;\n"
                        "}\n"),
              expected);
    // The last of repeated keys wins; "key;" is short for "key = key;".
    EXPECT_EQ(readOrDie("{ a = 1; a = 2; b; }"), Value(Dictionary{{"a", "2"}, {"b", "b"}}));
}

TEST(OpenStepEscapes, NamedAndLiteralEscapes) {
    EXPECT_EQ(readOrDie(R"("\n\t\r\a\b\f\v")"), Value("\n\t\r\a\b\f\v"));
    EXPECT_EQ(readOrDie(R"("quote \" backslash \\ apostrophe \' other \q")"),
              Value("quote \" backslash \\ apostrophe ' other q"));
    EXPECT_EQ(readOrDie("'it\\'s'"), Value("it's"));
    EXPECT_EQ(readOrDie("\"line\\\nbreak\""), Value("line\nbreak"));
}

TEST(OpenStepEscapes, OctalNamesNextStepBytes) {
    EXPECT_EQ(readOrDie(R"("a\012b\101\60")"), Value("a\nbA0"));
    // At most three digits: a NUL followed by the character '5'.
    EXPECT_EQ(readOrDie(R"("\0005")"), Value(QString(QChar(0)) + u'5'));
    // The upper half is NeXTSTEP, not Latin-1: 0xE9 is Ø and 0xD9 is ä.
    EXPECT_EQ(readOrDie(R"("\351\331\200")"), Value(QStringLiteral("\u00D8\u00E4\u00A0")));
}

TEST(OpenStepEscapes, UnicodeEscapesOfFourHexDigits) {
    EXPECT_EQ(readOrDie(R"("caf\U00e9")"), Value(QStringLiteral("caf\u00e9")));
    EXPECT_EQ(readOrDie(R"("\U20AC\u")"), Value(QStringLiteral("\u20ACu")));
    // A surrogate pair takes two escapes.
    EXPECT_EQ(readOrDie(R"("\UD83D\UDE00")"), Value(QStringLiteral("\U0001F600")));
    // Fewer digits end at the first character that is not hex; more are text.
    EXPECT_EQ(readOrDie(R"("\U41x \U00412")"), Value("Ax A2"));
}

TEST(OpenStepText, CommentsWhereverSpaceMayBe) {
    EXPECT_EQ(readOrDie("// heading\n/* block\n comment */ { /**/ a /* x */ = // y\n b; // z\n} // end"),
              Value(Dictionary{{"a", "b"}}));
    EXPECT_EQ(readOrDie("( a /* , b */, c // , d\n )"), Value(Array{"a", "c"}));
    EXPECT_EQ(readOrDie("\"/* not a comment */\""), Value("/* not a comment */"));
}

TEST(OpenStepText, Utf8AndUtf16WithByteOrderMarks) {
    const QString text = QStringLiteral("{ \"caf\u00e9\" = \"\U0001F600\"; }");
    const Value expected(Dictionary{{QStringLiteral("caf\u00e9"), QStringLiteral("\U0001F600")}});
    EXPECT_EQ(readOrDie(text.toUtf8()), expected);
    EXPECT_EQ(readOrDie("\xEF\xBB\xBF" + text.toUtf8()), expected);
    for (const auto encoding : {QStringEncoder::Utf16BE, QStringEncoder::Utf16LE}) {
        auto encoder = QStringEncoder(encoding, QStringEncoder::Flag::WriteBom);
        const QByteArray bytes = encoder.encode(text);
        EXPECT_EQ(readOrDie(bytes), expected);
    }
}

TEST(OpenStepStringsFile, EntriesWithoutBracesFormADictionary) {
    EXPECT_EQ(readOrDie("/* Localizable */\n"
                        "\"greeting\" = \"Hello\";\n"
                        "farewell = 'Bye'; // informal\n"
                        "list = (a, b);\n"
                        "nested = { x = y; };\n"
                        "bare;\n"),
              Value(Dictionary{{"greeting", "Hello"},
                               {"farewell", "Bye"},
                               {"list", Array{"a", "b"}},
                               {"nested", Dictionary{{"x", "y"}}},
                               {"bare", "bare"}}));
    EXPECT_EQ(readOrDie("a=b;"), Value(Dictionary{{"a", "b"}}));
    // Nothing but space and comments is an empty strings file.
    EXPECT_EQ(readOrDie(" /* nothing */ \n// here\n"), Value(Dictionary{}));
    // A lone string is just a string.
    EXPECT_EQ(readOrDie("  lonely  "), Value("lonely"));
}

TEST(OpenStepErrors, ReportTheLineOfTheFault) {
    const QJsonArray cases = quorlin::test::dataJson(QStringLiteral("plist/openstep-errors.json")).toArray();
    ASSERT_GT(cases.size(), 20);
    for (const QJsonValue& c : cases) {
        SCOPED_TRACE(c["fault"].toString().toStdString());
        const ParseError error = errorOf(c["text"].toString().toUtf8());
        EXPECT_EQ(error.line, c["line"].toInt()) << error.toString().toStdString();
        EXPECT_FALSE(error.reason.isEmpty());
    }
}

TEST(OpenStepErrors, LinesCountEveryKindOfLineEnd) {
    EXPECT_EQ(errorOf("(\r\na,\r\nb\r\n@)").line, 4);
    EXPECT_EQ(errorOf("(\ra,\rb\r@)").line, 4);
    EXPECT_EQ(errorOf("(\na,\r\nb\r@)").line, 4);
}

TEST(OpenStepErrors, EmptyAndUndecodableInput) {
    EXPECT_FALSE(OpenStepReader::read(QByteArray()));
    const ParseError badUtf8 = errorOf("{\n a = b;\n c = \"\xC3\x28\";\n}");
    EXPECT_EQ(badUtf8.line, 3);
    EXPECT_EQ(errorOf("{ a = \"\xFF\"; }").line, 1);
}

TEST(OpenStepErrors, NestingIsLimited) {
    const auto nested = [](int depth) { return QByteArray(depth, '(') + "x" + QByteArray(depth, ')'); };
    EXPECT_TRUE(OpenStepReader::read(nested(512)));
    EXPECT_GT(errorOf(nested(513)).line, 0);
    EXPECT_GT(errorOf(QByteArray("{a=").repeated(200000)).line, 0);
    EXPECT_GT(errorOf(QByteArray(200000, '(')).line, 0);
    EXPECT_TRUE(OpenStepReader::read("{ a = { b = c; }; }", ReadLimits{2}));
    EXPECT_FALSE(OpenStepReader::read("{ a = { b = (c); }; }", ReadLimits{2}));
}
