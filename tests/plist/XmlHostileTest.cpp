#include "plist/PlistReader.h"
#include "plist/XmlReader.h"
#include "plist/XmlWriter.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

using namespace quorlin;
using namespace quorlin::plist;

namespace {

QByteArray repeated(const QByteArray& piece, int count) {
    return piece.repeated(count);
}

ParseError failure(const QByteArray& bytes) {
    const auto result = XmlReader::read(bytes);
    EXPECT_FALSE(result.hasValue()) << bytes.left(200).toStdString();
    return result.hasValue() ? ParseError{} : result.error();
}

const QByteArray billionLaughs =
    "<?xml version=\"1.0\"?>\n"
    "<!DOCTYPE plist [\n"
    "  <!ENTITY lol \"lol\">\n"
    "  <!ENTITY lol1 \"&lol;&lol;&lol;&lol;&lol;&lol;&lol;&lol;&lol;&lol;\">\n"
    "  <!ENTITY lol2 \"&lol1;&lol1;&lol1;&lol1;&lol1;&lol1;&lol1;&lol1;&lol1;&lol1;\">\n"
    "  <!ENTITY lol3 \"&lol2;&lol2;&lol2;&lol2;&lol2;&lol2;&lol2;&lol2;&lol2;&lol2;\">\n"
    "  <!ENTITY lol4 \"&lol3;&lol3;&lol3;&lol3;&lol3;&lol3;&lol3;&lol3;&lol3;&lol3;\">\n"
    "  <!ENTITY lol5 \"&lol4;&lol4;&lol4;&lol4;&lol4;&lol4;&lol4;&lol4;&lol4;&lol4;\">\n"
    "  <!ENTITY lol6 \"&lol5;&lol5;&lol5;&lol5;&lol5;&lol5;&lol5;&lol5;&lol5;&lol5;\">\n"
    "  <!ENTITY lol7 \"&lol6;&lol6;&lol6;&lol6;&lol6;&lol6;&lol6;&lol6;&lol6;&lol6;\">\n"
    "  <!ENTITY lol8 \"&lol7;&lol7;&lol7;&lol7;&lol7;&lol7;&lol7;&lol7;&lol7;&lol7;\">\n"
    "  <!ENTITY lol9 \"&lol8;&lol8;&lol8;&lol8;&lol8;&lol8;&lol8;&lol8;&lol8;&lol8;\">\n"
    "]>\n"
    "<plist version=\"1.0\"><string>&lol9;</string></plist>\n";

} // namespace

TEST(XmlHostileTest, HundredThousandNestedArraysFailAtTheDepthLimit) {
    const QByteArray closed =
        "<plist>" + repeated("<array>", 100000) + repeated("</array>", 100000) + "</plist>";
    EXPECT_TRUE(failure(closed).reason.contains(QStringLiteral("Nesting")));
    // Unclosed: pugixml itself rejects it.
    EXPECT_FALSE(failure("<plist>" + repeated("<array>", 100000)).reason.isEmpty());
    // Through the format-detecting entry point as well.
    EXPECT_FALSE(PlistReader::read(closed).hasValue());
}

TEST(XmlHostileTest, HundredThousandNestedDictionariesFailAtTheDepthLimit) {
    const QByteArray bytes = "<plist>" + repeated("<dict><key>k</key>", 100000) + "<true/>" +
                             repeated("</dict>", 100000) + "</plist>";
    EXPECT_TRUE(failure(bytes).reason.contains(QStringLiteral("Nesting")));
}

TEST(XmlHostileTest, EntityDeclarationsAreRefusedNotExpanded) {
    const ParseError laughs = failure(billionLaughs);
    EXPECT_TRUE(laughs.reason.contains(QStringLiteral("not allowed"))) << laughs.reason.toStdString();
    EXPECT_EQ(laughs.line, 2);

    const QByteArray external =
        "<?xml version=\"1.0\"?>\n<!DOCTYPE plist [<!ENTITY x SYSTEM \"file:///etc/passwd\">]>\n"
        "<plist><string>&x;</string></plist>";
    EXPECT_TRUE(failure(external).reason.contains(QStringLiteral("not allowed")));

    const QByteArray parameter = "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" \"x.dtd\" "
                                 "[<!ENTITY % p SYSTEM \"http://127.0.0.1:1/x\"> %p;]><plist><true/></plist>";
    EXPECT_TRUE(failure(parameter).reason.contains(QStringLiteral("not allowed")));

    // A stray entity declaration outside any DOCTYPE, and a reference to an undeclared entity.
    EXPECT_FALSE(failure("<!ENTITY x \"y\"><plist><string>&x;</string></plist>").reason.isEmpty());
    EXPECT_TRUE(failure("<plist><string>&lol9;</string></plist>").reason.contains(QStringLiteral("entity")));
    // A DOCTYPE further in is no way around the check.
    EXPECT_FALSE(failure("<plist><array><!DOCTYPE x [<!ENTITY y \"z\">]></array></plist>").reason.isEmpty());
    EXPECT_FALSE(failure("<plist><true/></plist><!DOCTYPE x [<!ENTITY y \"z\">]>").reason.isEmpty());
}

TEST(XmlHostileTest, HugeInvalidBase64IsAnError) {
    const QByteArray bytes = "<plist><data>" + repeated("QUFBQUFB\n", 1 << 20) + "!</data></plist>";
    EXPECT_TRUE(failure(bytes).reason.contains(QStringLiteral("base64")));
}

TEST(XmlHostileTest, ManyCommentsAndCdataSectionsStayLinear) {
    // Comment openers inside a comment mean nothing; the first "-->" closes it.
    const QByteArray nestedComments =
        "<plist><array>" + repeated("<!-- <!-- ", 50000) + " -->" + "<string>x</string></array></plist>";
    const auto comments = XmlReader::read(nestedComments);
    ASSERT_TRUE(comments.hasValue()) << comments.error().toString().toStdString();
    EXPECT_EQ(*comments, Value(Array{QStringLiteral("x")}));

    const auto cdata =
        XmlReader::read("<plist><string>" + repeated("<![CDATA[ab]]>", 100000) + "</string></plist>");
    ASSERT_TRUE(cdata.hasValue());
    EXPECT_EQ(cdata->toString()->size(), 200000);

    // CDATA that never closes; CDATA in CDATA does not nest.
    EXPECT_FALSE(
        failure("<plist><string>" + repeated("<![CDATA[", 100000) + "</string></plist>").reason.isEmpty());
    const auto inner = XmlReader::read("<plist><string><![CDATA[<![CDATA[x]]>]]></string></plist>");
    ASSERT_TRUE(inner.hasValue());
    EXPECT_EQ(*inner, Value(QStringLiteral("<![CDATA[x]]>")));
}

TEST(XmlHostileTest, TruncatedDocumentsFailAtEveryCut) {
    const Dictionary tree{
        {QStringLiteral("array"), Array{1, 2.5, QStringLiteral("text"), Array{}, Dictionary{}}},
        {QStringLiteral("data"), QByteArray(200, 'x')},
        {QStringLiteral("date"), Date{123456789}},
        {QStringLiteral("nested"),
         Dictionary{{QStringLiteral("flag"), true}, {QStringLiteral("off"), false}}},
        {QStringLiteral("escaped"), QStringLiteral("<&>")},
    };
    const auto written = XmlWriter::write(tree);
    ASSERT_TRUE(written.hasValue());
    const QByteArray full = *written;
    const qsizetype end = full.lastIndexOf("</plist>");
    ASSERT_GT(end, 0);
    int failures = 0;
    for (qsizetype cut = 0; cut < end + 8; ++cut) {
        const auto result = XmlReader::read(full.left(cut));
        EXPECT_FALSE(result.hasValue()) << "cut at " << cut << ": " << full.left(cut).right(40).toStdString();
        failures += !result.hasValue();
    }
    EXPECT_EQ(failures, end + 8);
    EXPECT_TRUE(XmlReader::read(full).hasValue());
}

// Refused by its size before any parsing, whatever its form: a tree of
// several times 200 MB is never built.
TEST(XmlHostileTest, TwoHundredMegabytesAreRefusedUnreadInEveryForm) {
    QByteArray bytes(200 << 20, ' ');
    for (const QByteArray& head :
         {QByteArray("<?xml version=\"1.0\"?><plist><string>"), QByteArray("bplist00"), QByteArray("( \"")}) {
        bytes.replace(0, head.size(), head);
        const auto read = PlistReader::read(bytes);
        ASSERT_FALSE(read.hasValue()) << head.toStdString();
        EXPECT_TRUE(read.error().reason.contains(QStringLiteral("200 MB")))
            << read.error().toString().toStdString();
    }
}
