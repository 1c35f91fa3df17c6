#include "plist/XmlReader.h"
#include "support/DataTrees.h"

#include <QStringEncoder>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace quorlin;
using namespace quorlin::plist;

namespace {

QByteArray inPlist(const QByteArray& body) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
           "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
           "<plist version=\"1.0\">\n" +
           body + "\n</plist>\n";
}

Value read(const QByteArray& bytes) {
    const auto result = XmlReader::read(bytes);
    EXPECT_TRUE(result.hasValue()) << bytes.left(300).toStdString() << "\n-> "
                                   << (result ? "" : result.error().toString().toStdString());
    return result.hasValue() ? *result : Value();
}

ParseError failure(const QByteArray& bytes, const ReadLimits& limits = {}) {
    const auto result = XmlReader::read(bytes, limits);
    EXPECT_FALSE(result.hasValue()) << bytes.left(300).toStdString() << "\n-> read as "
                                    << (result ? result->debugDescription().toStdString() : "");
    return result.hasValue() ? ParseError{} : result.error();
}

Value element(const QByteArray& xml) {
    return read(inPlist(xml));
}

QJsonObject errorCases() {
    return test::dataJson(QStringLiteral("plist/xml-errors.json")).toObject();
}

Date dateAt(int year, int month, int day, int hour = 0, int minute = 0, int second = 0) {
    return Date::fromDateTime(QDateTime(QDate(year, month, day), QTime(hour, minute, second), Qt::UTC));
}

} // namespace

TEST(XmlReaderTest, RootNeedNotBeWrappedInPlist) {
    EXPECT_EQ(read("<array><integer>1</integer></array>"), Value(Array{1}));
    EXPECT_EQ(read("<?xml version=\"1.0\"?><string>bare</string>"), Value(QStringLiteral("bare")));
}

TEST(XmlReaderTest, IntegersInDecimalAndHexadecimal) {
    EXPECT_EQ(element("<integer>0</integer>"), Value(0));
    EXPECT_EQ(element("<integer>+12</integer>"), Value(12));
    EXPECT_EQ(element("<integer> \n 7 \t</integer>"), Value(7));
    EXPECT_EQ(element("<integer>007</integer>"), Value(7));
    EXPECT_EQ(element("<integer>0x1F</integer>"), Value(31));
    EXPECT_EQ(element("<integer>-0Xff</integer>"), Value(-255));
    EXPECT_EQ(element("<integer>-9223372036854775808</integer>"), Value(std::numeric_limits<qint64>::min()));
    EXPECT_EQ(element("<integer>9223372036854775807</integer>"), Value(std::numeric_limits<qint64>::max()));

    const Value aboveSigned = element("<integer>9223372036854775808</integer>");
    EXPECT_TRUE(aboveSigned.isUnsignedInteger());
    EXPECT_EQ(aboveSigned.toUnsigned(), quint64(1) << 63);
    EXPECT_EQ(element("<integer>18446744073709551615</integer>"),
              Value::fromUnsigned(std::numeric_limits<quint64>::max()));
    EXPECT_EQ(element("<integer>0xFFFFFFFFFFFFFFFF</integer>"),
              Value::fromUnsigned(std::numeric_limits<quint64>::max()));
}

TEST(XmlReaderTest, RealsIncludingApplesSpecialNames) {
    EXPECT_EQ(element("<real>2.5</real>"), Value(2.5));
    EXPECT_EQ(element("<real>-2</real>"), Value(-2.0));
    EXPECT_EQ(element("<real>+1.5e3</real>"), Value(1500.0));
    EXPECT_EQ(element("<real>.5</real>"), Value(0.5));
    EXPECT_EQ(element("<real> 1E-300 </real>"), Value(1e-300));
    EXPECT_EQ(element("<real>0.1</real>"), Value(0.1));
    const double infinity = std::numeric_limits<double>::infinity();
    for (const char* text : {"inf", "+inf", "infinity", "+infinity", "INF", "Infinity"})
        EXPECT_EQ(element(QByteArray("<real>") + text + "</real>"), Value(infinity)) << text;
    for (const char* text : {"-inf", "-infinity", "-Infinity"})
        EXPECT_EQ(element(QByteArray("<real>") + text + "</real>"), Value(-infinity)) << text;
    EXPECT_TRUE(std::isnan(*element("<real>nan</real>").toReal()));
    EXPECT_TRUE(std::isnan(*element("<real>NaN</real>").toReal()));
    const Value negativeZero = element("<real>-0.0</real>");
    EXPECT_TRUE(std::signbit(*negativeZero.toReal()));
    // A real with an integral value stays a real.
    EXPECT_TRUE(element("<real>1</real>").isReal());
}

TEST(XmlReaderTest, DatesOfAnyYear) {
    EXPECT_EQ(element("<date>2001-01-01T00:00:00Z</date>"), Value(Date{0}));
    EXPECT_EQ(element("<date>1900-01-01T00:00:00Z</date>"), Value(dateAt(1900, 1, 1)));
    EXPECT_EQ(element("<date>1969-12-31T23:59:59Z</date>"), Value(dateAt(1969, 12, 31, 23, 59, 59)));
    EXPECT_EQ(element("<date>2038-01-19T03:14:08Z</date>"), Value(dateAt(2038, 1, 19, 3, 14, 8)));
    EXPECT_EQ(element("<date>2100-02-28T12:00:00Z</date>"), Value(dateAt(2100, 2, 28, 12)));
    EXPECT_EQ(element("<date>3000-12-31T23:59:59Z</date>"), Value(dateAt(3000, 12, 31, 23, 59, 59)));
    EXPECT_EQ(element("<date>2024-02-29T00:00:00Z</date>"), Value(dateAt(2024, 2, 29)));
    // 0001-01-01 lies 730,485 days (2000 years, 485 of them leap) before 2001;
    // year 0 is 1 BC, a leap year, and year -1 is 2 BC.
    EXPECT_EQ(element("<date>0001-01-01T00:00:00Z</date>"), Value(Date{-730485.0 * 86400}));
    EXPECT_EQ(element("<date>0000-01-01T00:00:00Z</date>"), Value(Date{-(730485.0 + 366) * 86400}));
    EXPECT_EQ(element("<date>-001-01-01T00:00:00Z</date>"), Value(Date{-(730485.0 + 366 + 365) * 86400}));
    EXPECT_EQ(element("<date>12345-06-07T08:09:10Z</date>").toDate()->toDateTime(),
              QDateTime(QDate(12345, 6, 7), QTime(8, 9, 10), Qt::UTC));
}

TEST(XmlReaderTest, DataToleratesWhitespaceAndMayBeEmpty) {
    EXPECT_EQ(element("<data>\n\t\tAAEC\n\t\tAwQ=\n\t</data>"), Value(QByteArray("\x00\x01\x02\x03\x04", 5)));
    EXPECT_EQ(element("<data>A A E C A w Q</data>"), Value(QByteArray("\x00\x01\x02\x03\x04", 5)));
    EXPECT_EQ(element("<data>YWI=</data>"), Value(QByteArray("ab")));
    EXPECT_EQ(element("<data>YWI</data>"), Value(QByteArray("ab")));
    for (const char* empty : {"<data/>", "<data></data>", "<data>\n\t</data>"}) {
        const Value value = element(empty);
        EXPECT_TRUE(value.isData()) << empty;
        EXPECT_EQ(value.toData(), QByteArray()) << empty;
    }
}

// Each malformed text is refused with a reason that names the class it failed to be.
TEST(XmlReaderTest, MalformedScalarsAreErrors) {
    const QJsonObject cases = errorCases()["malformed scalars"].toObject();
    ASSERT_EQ(cases.size(), 4);
    for (auto c = cases.begin(); c != cases.end(); ++c) {
        const QByteArray name = c.key().toUtf8();
        for (const QJsonValue& text : c.value().toArray()) {
            SCOPED_TRACE(name.toStdString() + " " + text.toString().toStdString());
            const ParseError error =
                failure(inPlist("<" + name + ">" + text.toString().toUtf8() + "</" + name + ">"));
            if (name == "data")
                EXPECT_FALSE(error.reason.isEmpty());
            else
                EXPECT_TRUE(error.reason.contains(QString::fromLatin1(name))) << error.reason.toStdString();
        }
    }
}

TEST(XmlReaderTest, TextKeepsWhitespaceAndJoinsCdata) {
    EXPECT_EQ(element("<string> </string>"), Value(QStringLiteral(" ")));
    EXPECT_EQ(element("<string>\n\t</string>"), Value(QStringLiteral("\n\t")));
    EXPECT_EQ(element("<string>  two  words  </string>"), Value(QStringLiteral("  two  words  ")));
    EXPECT_EQ(element("<string></string>"), Value(QString()));
    EXPECT_EQ(element("<string/>"), Value(QString()));
    EXPECT_EQ(element("<string>a<![CDATA[<b> & ]]>c<![CDATA[]]>d</string>"),
              Value(QStringLiteral("a<b> & cd")));
    EXPECT_EQ(element("<string><![CDATA[only]]></string>"), Value(QStringLiteral("only")));
    // Line ends stay as written, as Apple's parser keeps them.
    EXPECT_EQ(element("<string>line\r\nbreak\rold\nnew</string>"),
              Value(QStringLiteral("line\r\nbreak\rold\nnew")));
    // Comments vanish from text and between elements.
    EXPECT_EQ(element("<array><!-- one --><string>a<!-- two -->b</string><!-- three --></array>"),
              Value(Array{QStringLiteral("ab")}));
}

TEST(XmlReaderTest, EntitiesAndCharacterReferences) {
    EXPECT_EQ(element("<string>&amp;&lt;&gt;&quot;&apos;</string>"), Value(QStringLiteral("&<>\"'")));
    EXPECT_EQ(element("<string>&#65;&#x42;&#x1F600;&#233;&#x20AC;</string>"),
              Value(QString::fromUtf8("AB\xF0\x9F\x98\x80\xC3\xA9\xE2\x82\xAC")));
}

TEST(XmlReaderTest, UnknownOrMalformedReferencesAreErrors) {
    for (const char* text : {"&nbsp;", "&amp", "a & b", "&#X43;", "&#;", "&#x;", "&#0;", "&#xD800;",
                             "&#x110000;", "&#12a;", "&#99999999999;"}) {
        SCOPED_TRACE(text);
        const ParseError error = failure(inPlist(QByteArray("<string>") + text + "</string>"));
        EXPECT_TRUE(error.reason.contains(QStringLiteral("entity"))) << error.reason.toStdString();
    }
}

TEST(XmlReaderTest, Utf16WithByteOrderMarkAndUtf8WithOne) {
    const QString text =
        QString::fromUtf8("<?xml version=\"1.0\" encoding=\"UTF-16\"?>\n"
                          "<plist version=\"1.0\">\n<dict>\n\t<key>caf\xC3\xA9</key>\n"
                          "\t<string>\xF0\x9F\x98\x80 &amp; more</string>\n</dict>\n</plist>\n");
    const Value expected =
        Dictionary{{QString::fromUtf8("caf\xC3\xA9"), QString::fromUtf8("\xF0\x9F\x98\x80 & more")}};
    for (const auto encoding : {QStringEncoder::Utf16LE, QStringEncoder::Utf16BE}) {
        QStringEncoder encoder(encoding, QStringEncoder::Flag::WriteBom);
        const QByteArray bytes = encoder(text);
        EXPECT_EQ(read(bytes), expected);
    }
    EXPECT_EQ(read("\xEF\xBB\xBF" + text.toUtf8()), expected);

    QStringEncoder encoder(QStringEncoder::Utf16LE, QStringEncoder::Flag::WriteBom);
    const QByteArray oddLength = QByteArray(encoder(text)).chopped(1);
    EXPECT_TRUE(failure(oddLength).reason.contains(QStringLiteral("UTF-16")));
}

TEST(XmlReaderTest, RepeatedKeyKeepsTheLaterValue) {
    EXPECT_EQ(element("<dict><key>a</key><integer>1</integer><key>b</key><true/><key>a</key><integer>2</"
                      "integer></dict>"),
              Value(Dictionary{{QStringLiteral("a"), 2}, {QStringLiteral("b"), true}}));
}

TEST(XmlReaderTest, KeysMayHoldEntitiesAndCdata) {
    EXPECT_EQ(
        element(
            "<dict><key>a&amp;b</key><string>x</string><key><![CDATA[<c>]]></key><string>y</string></dict>"),
        Value(Dictionary{{QStringLiteral("a&b"), QStringLiteral("x")},
                         {QStringLiteral("<c>"), QStringLiteral("y")}}));
}

// An element is wrapped in a whole plist document; a document stands as it is.
TEST(XmlReaderTest, StructuralErrors) {
    const QJsonArray cases = errorCases()["structural faults"].toArray();
    ASSERT_GT(cases.size(), 15);
    for (const QJsonValue& c : cases) {
        SCOPED_TRACE(c["name"].toString().toStdString());
        const QByteArray bytes = c["element"].isString() ? inPlist(c["element"].toString().toUtf8())
                                                         : c["document"].toString().toUtf8();
        const ParseError error = failure(bytes + c["after"].toString().toUtf8());
        EXPECT_FALSE(error.reason.isEmpty());
        EXPECT_TRUE(error.reason.contains(c["reason"].toString())) << error.reason.toStdString();
        EXPECT_GE(error.line, 1);
    }
}

TEST(XmlReaderTest, ErrorsNameTheLine) {
    const QByteArray bytes = inPlist("<dict>\n"         // line 4
                                     "\t<key>a</key>\n" // 5
                                     "\t<integer>1</integer>\n"
                                     "\t<key>b</key>\n"
                                     "\t<integer>x</integer>\n" // 8
                                     "</dict>");
    const ParseError error = failure(bytes);
    EXPECT_EQ(error.line, 8) << error.reason.toStdString();
    EXPECT_TRUE(error.toString().endsWith(QStringLiteral("(line 8)"))) << error.toString().toStdString();

    EXPECT_EQ(failure(inPlist("<array>\n\n<true/>\n</dict>")).line, 7) << "pugixml's own errors too";
    EXPECT_EQ(failure("<plist>\r<array>\r\r<bad/></array></plist>").line, 4) << "carriage returns end lines";
}

TEST(XmlReaderTest, NestingLimitCountsContainers) {
    const ReadLimits limits{3};
    EXPECT_TRUE(
        XmlReader::read(inPlist("<array><dict><key>k</key><array/></dict></array>"), limits).hasValue());
    const ParseError error =
        failure(inPlist("<array><dict><key>k</key><array><array/></array></dict></array>"), limits);
    EXPECT_TRUE(error.reason.contains(QStringLiteral("Nesting"))) << error.reason.toStdString();
}

TEST(XmlReaderTest, ExternalDoctypeIsSkipped) {
    EXPECT_EQ(read("<!DOCTYPE plist SYSTEM \"file:///does/not/exist.dtd\"><plist><string>a</string></plist>"),
              Value(QStringLiteral("a")));
}
