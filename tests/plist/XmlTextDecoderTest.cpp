// XML property lists are read in the encoding they declare; text that isn't
// what it claims is an error that names its line, never a replaced character.

#include "plist/PlistReader.h"
#include "support/TestSupport.h"

#include <QStringEncoder>

#include <gtest/gtest.h>

using namespace quorlin;
using namespace quorlin::plist;

namespace {

QByteArray document(const QByteArray& encoding, const QByteArray& key) {
    return "<?xml version=\"1.0\" encoding=\"" + encoding + "\"?>\n<plist version=\"1.0\">\n<dict>\n<key>" +
           key + "</key>\n<string>x</string>\n</dict>\n</plist>\n";
}

} // namespace

TEST(XmlTextDecoderTest, DeclaredEncodingsAreDecodedAsDeclared) {
    const QString cafe = QString::fromUtf8("caf\xC3\xA9");
    QStringEncoder utf16(QStringEncoder::Utf16BE, QStringEncoder::Flag::WriteBom);
    const struct {
        const char* name;
        QByteArray bytes;
    } cases[] = {
        {"ISO-8859-1", document("ISO-8859-1", "caf\xE9")},
        {"latin1 in lower case", document("iso-8859-1", "caf\xE9")},
        {"windows-1252", document("windows-1252", "caf\xE9")},
        {"UTF-8", document("UTF-8", cafe.toUtf8())},
        {"UTF-16 with its mark", utf16(QString::fromLatin1(document("UTF-16", "caf\xE9")))},
    };
    for (const auto& each : cases) {
        const auto read = PlistReader::read(each.bytes);
        ASSERT_TRUE(read) << each.name << ": " << read.error().toString().toStdString();
        EXPECT_TRUE(read->root.dictionary()->contains(cafe)) << each.name;
    }
}

TEST(XmlTextDecoderTest, TextThatIsNotWhatItClaimsIsRefusedWithItsLine) {
    const struct {
        const char* name;
        QByteArray bytes;
        const char* reason;
    } cases[] = {
        {"Latin-1 bytes declared UTF-8", document("UTF-8", "caf\xE9"),
         "Invalid UTF-8 text at byte 76 (line 4)"},
        {"no declaration", "<plist version=\"1.0\">\n<string>\xC0\xAF</string></plist>",
         "Invalid UTF-8 text at byte 30 (line 2)"},
        {"a surrogate", document("UTF-8", "\xED\xA0\x80"), "Invalid UTF-8 text at byte 73 (line 4)"},
        {"cut short", document("UTF-8", "\xE2\x82"), "Invalid UTF-8 text at byte 73 (line 4)"},
        {"an unknown encoding", document("X-NOTHING", "a"), "Unsupported text encoding “X-NOTHING” (line 1)"},
    };
    for (const auto& each : cases) {
        const auto read = PlistReader::read(each.bytes);
        ASSERT_FALSE(read) << each.name;
        EXPECT_EQ(read.error().toString(), QString::fromUtf8(each.reason)) << each.name;
    }
}
