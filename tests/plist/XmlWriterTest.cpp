#include "plist/XmlWriter.h"
#include "plist/XmlReader.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace quorlin;
using namespace quorlin::plist;

namespace {

const QByteArray header = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                          "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                          "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
                          "<plist version=\"1.0\">\n";

QByteArray document(const QByteArray& body) {
    return header + body + "</plist>\n";
}

QByteArray written(const Value& value) {
    const auto bytes = XmlWriter::write(value);
    EXPECT_TRUE(bytes.hasValue()) << (bytes.hasValue() ? "" : bytes.error().toStdString());
    return bytes.hasValue() ? *bytes : QByteArray();
}

Value roundTripped(const Value& value) {
    const auto bytes = XmlWriter::write(value);
    if (!bytes)
        return {};
    const auto read = XmlReader::read(*bytes);
    EXPECT_TRUE(read.hasValue()) << read.error().toString().toStdString();
    return read.hasValue() ? *read : Value();
}

Date dateAt(int year, int month, int day, int hour = 0, int minute = 0, int second = 0) {
    return Date::fromDateTime(QDateTime(QDate(year, month, day), QTime(hour, minute, second), Qt::UTC));
}

// The 100 bytes 0x00..0x63 in base64: 136 characters.
const QByteArray hundredBytesBase64 =
    "AAECAwQFBgcICQoLDA0ODxAREhMUFRYXGBkaGxwdHh8gISIjJCUmJygpKissLS4vMDEyMzQ1Njc4"
    "OTo7PD0+P0BBQkNERUZHSElKS0xNTk9QUVJTVFVWV1hZWltcXV5fYGFiYw==";

QByteArray hundredBytes() {
    QByteArray bytes;
    for (int i = 0; i < 100; ++i)
        bytes.append(char(i));
    return bytes;
}

} // namespace

// Key order by UTF-16 code units (upper case first, a surrogate pair before
// U+FF21), escaping of only "&", "<" and ">", one tab per level, empty
// containers and data, a UID as a keyed archiver's dictionary: the golden
// file is what Apple's writer makes of this tree, and reads back as it.
TEST(XmlWriterTest, WritesAndReadsApplesLayout) {
    const auto tree = [](const Value& uid) {
        return Dictionary{{"Blob", QByteArray("abc")},
                          {"Count", 42},
                          {"Disabled", false},
                          {"Enabled", true},
                          {"Name", "Wi-Fi"},
                          {"Ratio", 2.5},
                          {"When", dateAt(2024, 2, 1, 10, 6, 10)},
                          {"b", 1},
                          {"B", -17},
                          {QString::fromUtf8("\xEF\xBC\xA1"), 3},
                          {QString::fromUtf8("\xF0\x9F\x98\x80"), 4},
                          {"<a&b>", "\"quoted\" & 'single' <tag>"},
                          {"containers", Array{Array{}, Dictionary{}, QString(), QByteArray(),
                                               Array{Dictionary{{"k", Array{1}}}, "x"}, uid}}};
    };
    const QByteArray golden = test::readFile(test::testDataPath("plist/apple-layout.plist"));
    EXPECT_EQ(written(tree(Uid{7})), golden);
    EXPECT_EQ(XmlReader::read(golden).value(), Value(tree(Dictionary{{"CF$UID", 7}})));
    EXPECT_EQ(written(Dictionary{}), document("<dict/>\n"));
    EXPECT_EQ(written(QStringLiteral("top")), document("<string>top</string>\n"));
}

TEST(XmlWriterTest, DataLinesShrinkWithDepthAndStopAtEightTabs) {
    // At the root: lines of 76 characters, no indentation.
    EXPECT_EQ(written(hundredBytes()), document("<data>\n" + hundredBytesBase64.left(76) + "\n" +
                                                hundredBytesBase64.mid(76) + "\n</data>\n"));

    // One level down: 68 characters and one tab.
    EXPECT_EQ(written(Array{hundredBytes()}),
              document("<array>\n\t<data>\n\t" + hundredBytesBase64.left(68) + "\n\t" +
                       hundredBytesBase64.mid(68) + "\n\t</data>\n</array>\n"));

    // Two levels: 60 characters, so three lines.
    EXPECT_EQ(written(Array{Array{hundredBytes()}}),
              document("<array>\n\t<array>\n\t\t<data>\n\t\t" + hundredBytesBase64.left(60) + "\n\t\t" +
                       hundredBytesBase64.mid(60, 60) + "\n\t\t" + hundredBytesBase64.mid(120) +
                       "\n\t\t</data>\n\t</array>\n</array>\n"));

    // Nine levels: the base64 keeps eight tabs and 12-character lines; the tags keep their depth.
    Value nested = QByteArray("0123456789abcdefghij"); // "MDEyMzQ1Njc4OWFiY2RlZmdoaWo=", 28 characters
    for (int i = 0; i < 9; ++i)
        nested = Array{nested};
    const QByteArray bytes = written(nested);
    const QByteArray eight(8, '\t');
    const QByteArray nine(9, '\t');
    EXPECT_TRUE(bytes.contains(nine + "<data>\n" + eight + "MDEyMzQ1Njc4\n" + eight + "OWFiY2RlZmdo\n" +
                               eight + "aWo=\n" + nine + "</data>\n"))
        << bytes.toStdString();
}

// Reals shortest and integral ones without a fraction; dates in UTC and whole
// seconds, also before the reference date; integers over both 64-bit ranges.
TEST(XmlWriterTest, ScalarsAreWrittenAsApplesWriterWritesThem) {
    const double infinity = std::numeric_limits<double>::infinity();
    const std::pair<Value, const char*> cases[] = {
        {1.0, "<real>1</real>"},
        {-3.0, "<real>-3</real>"},
        {0.1, "<real>0.1</real>"},
        {2.5, "<real>2.5</real>"},
        {100000000.0, "<real>100000000</real>"},
        {1e20, "<real>1e+20</real>"},
        {1e-300, "<real>1e-300</real>"},
        {0.0001, "<real>0.0001</real>"},
        {0.00001, "<real>1e-05</real>"},
        {0.1 + 0.2, "<real>0.30000000000000004</real>"},
        {0.0, "<real>0.0</real>"},
        {-0.0, "<real>-0.0</real>"},
        {infinity, "<real>+infinity</real>"},
        {-infinity, "<real>-infinity</real>"},
        {std::nan(""), "<real>nan</real>"},
        {Date{0}, "<date>2001-01-01T00:00:00Z</date>"},
        {Date{0.999}, "<date>2001-01-01T00:00:00Z</date>"},
        {Date{-0.5}, "<date>2000-12-31T23:59:59Z</date>"},
        {dateAt(1900, 1, 1), "<date>1900-01-01T00:00:00Z</date>"},
        {dateAt(2100, 12, 31, 23, 59, 59), "<date>2100-12-31T23:59:59Z</date>"},
        {dateAt(3000, 2, 28, 12), "<date>3000-02-28T12:00:00Z</date>"},
        {dateAt(2000, 2, 29, 6, 7, 8), "<date>2000-02-29T06:07:08Z</date>"},
        {std::numeric_limits<qint64>::min(), "<integer>-9223372036854775808</integer>"},
        {std::numeric_limits<qint64>::max(), "<integer>9223372036854775807</integer>"},
        {Value::fromUnsigned(std::numeric_limits<quint64>::max()), "<integer>18446744073709551615</integer>"},
    };
    for (const auto& [value, body] : cases)
        EXPECT_EQ(written(value), document(QByteArray(body) + "\n"));
}

TEST(XmlWriterTest, NullValueFailsWithItsPlace) {
    const auto atRoot = XmlWriter::write(Value());
    ASSERT_FALSE(atRoot.hasValue());
    EXPECT_TRUE(atRoot.error().contains(QStringLiteral("null"))) << atRoot.error().toStdString();

    const auto nested =
        XmlWriter::write(Dictionary{{QStringLiteral("a"), 1}, {QStringLiteral("list"), Array{1, Value()}}});
    ASSERT_FALSE(nested.hasValue());
    EXPECT_TRUE(nested.error().contains(QStringLiteral("/list[1]"))) << nested.error().toStdString();
}

// A binary file may hold U+0000 in a key or a string, which would cut any
// XML document short: found by fuzzing a profile's open and save.
TEST(XmlWriterTest, TextHoldingUPlus0000FailsWithItsPlace) {
    const QString nul = QStringLiteral("a") + QChar(0) + QStringLiteral("b");
    for (const Dictionary& root : {Dictionary{{QStringLiteral("list"), Array{1, nul}}},
                                   Dictionary{{QStringLiteral("list"), Array{1, Dictionary{{nul, 2}}}}}}) {
        const auto written = XmlWriter::write(root);
        ASSERT_FALSE(written.hasValue());
        EXPECT_TRUE(written.error().contains(QStringLiteral("U+0000"))) << written.error().toStdString();
        EXPECT_TRUE(written.error().contains(QStringLiteral("/list[1]"))) << written.error().toStdString();
    }
    EXPECT_TRUE(XmlWriter::write(QStringLiteral("\x01\x1F")).hasValue());
}

TEST(XmlWriterTest, EdgeValuesRoundTrip) {
    const QString emoji = QString::fromUtf8("\xF0\x9F\x98\x80 \xF0\x9D\x84\x9E \xE2\x82\xAC");
    const Dictionary root{
        {QStringLiteral("1900"), dateAt(1900, 1, 1)},
        {QStringLiteral("1969"), dateAt(1969, 12, 31, 23, 59, 59)},
        {QStringLiteral("2039"), dateAt(2039, 1, 19, 3, 14, 8)},
        {QStringLiteral("2100"), dateAt(2100, 3, 1)},
        {QStringLiteral("3000"), dateAt(3000, 12, 31, 23, 59, 59)},
        {QStringLiteral("year 1"), Date{-63113904000.0}},
        {QStringLiteral("min"), std::numeric_limits<qint64>::min()},
        {QStringLiteral("max"), std::numeric_limits<qint64>::max()},
        {QStringLiteral("umax"), Value::fromUnsigned(std::numeric_limits<quint64>::max())},
        {QStringLiteral("tiny"), 1e-300},
        {QStringLiteral("denormal"), 5e-324},
        {QStringLiteral("huge"), std::numeric_limits<double>::max()},
        {QStringLiteral("tenth"), 0.1},
        {QStringLiteral("third"), 1.0 / 3.0},
        {emoji, emoji + QStringLiteral(" <&>")},
        {QStringLiteral("control"), QStringLiteral("tab\there\nnew line\r\nand\rreturn\x01")},
        {QStringLiteral("spaces"), QStringLiteral("  ")},
        {QStringLiteral("binary"), hundredBytes()},
        {QStringLiteral("uid-like"), Dictionary{{QStringLiteral("CF$UID"), 3}}},
    };
    EXPECT_EQ(roundTripped(root), Value(root));

    const Value negativeZero = roundTripped(-0.0);
    ASSERT_TRUE(negativeZero.isReal());
    EXPECT_TRUE(std::signbit(*negativeZero.toReal()));
    EXPECT_TRUE(std::isnan(*roundTripped(std::nan("")).toReal()));
    EXPECT_EQ(roundTripped(-std::numeric_limits<double>::infinity()),
              Value(-std::numeric_limits<double>::infinity()));
}
