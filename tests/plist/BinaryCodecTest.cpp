#include "plist/BinaryReader.h"
#include "plist/BinaryWriter.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace quorlin::plist;

namespace {

QByteArray writeOrDie(const Value& value) {
    const auto written = BinaryWriter::write(value);
    EXPECT_TRUE(written.hasValue()) << (written ? "" : written.error().toStdString());
    return written ? *written : QByteArray();
}

Value roundTrip(const Value& value) {
    const auto read = BinaryReader::read(writeOrDie(value));
    EXPECT_TRUE(read.hasValue()) << (read ? "" : read.error().toString().toStdString());
    return read ? *read : Value();
}

QByteArray bytesFromHex(const char* hex) {
    return QByteArray::fromHex(QByteArray(hex));
}

// Trailer fields, counted from the end of the file.
int referenceSize(const QByteArray& file) {
    return uchar(file[file.size() - 32 + 7]);
}
int offsetSize(const QByteArray& file) {
    return uchar(file[file.size() - 32 + 6]);
}
quint64 objectCount(const QByteArray& file) {
    return file.mid(file.size() - 24, 8).toHex().toULongLong(nullptr, 16);
}

Date dateFromUtc(int year, int month, int day) {
    return Date::fromDateTime(QDateTime(QDate(year, month, day), QTime(0, 0), Qt::UTC));
}

} // namespace

// Bytes worked out by hand from the format: header, objects, offset table,
// trailer (6 unused bytes, offset size, reference size, object count, top
// object, offset-table position).
TEST(BinaryCodecBytes, OneEntryDictionaryMatchesTheFormat) {
    const QByteArray expected = bytesFromHex("62706c6973743030" // bplist00
                                             "d10102"           // 0 @ 8: dictionary, key 1, value 2
                                             "5161"             // 1 @ 11: "a"
                                             "1001"             // 2 @ 13: 1
                                             "080b0d"           // offset table @ 15
                                             "000000000000"
                                             "01"
                                             "01"
                                             "0000000000000003"
                                             "0000000000000000"
                                             "000000000000000f");
    const Value value(Dictionary{{"a", 1}});
    EXPECT_EQ(writeOrDie(value), expected);
    EXPECT_EQ(BinaryReader::read(expected).value(), value);
}

TEST(BinaryCodecBytes, ArrayWithRepeatedStringStoresItOnce) {
    const QByteArray expected = bytesFromHex("62706c6973743030"
                                             "a50102030402"       // 0 @ 8: array of 5, "é" twice
                                             "09"                 // 1 @ 14: true
                                             "6100e9"             // 2 @ 15: "é" as UTF-16BE
                                             "13ffffffffffffffff" // 3 @ 18: -1 in eight bytes
                                             "233ff8000000000000" // 4 @ 27: 1.5
                                             "080e0f121b"         // offset table @ 36
                                             "000000000000"
                                             "01"
                                             "01"
                                             "0000000000000005"
                                             "0000000000000000"
                                             "0000000000000024");
    const Value value(Array{true, QStringLiteral("é"), qint64(-1), 1.5, QStringLiteral("é")});
    EXPECT_EQ(writeOrDie(value), expected);
    EXPECT_EQ(BinaryReader::read(expected).value(), value);
}

TEST(BinaryCodecBytes, LengthsFromFifteenOnFollowTheMarker) {
    const QByteArray fourteen = writeOrDie(QString(14, u'a'));
    EXPECT_EQ(uchar(fourteen[8]), 0x5E);
    const QByteArray fifteen = writeOrDie(QString(15, u'a'));
    EXPECT_EQ(fifteen.mid(8, 3), bytesFromHex("5f100f"));
    const QByteArray longData = writeOrDie(QByteArray(300, 'x'));
    EXPECT_EQ(longData.mid(8, 4), bytesFromHex("4f11012c"));
    const QByteArray longUnicode = writeOrDie(QString(20, QChar(0x263A)));
    EXPECT_EQ(longUnicode.mid(8, 5), bytesFromHex("6f1014263a"));
}

// Each value written in the smallest width Apple uses, and read back the same.
TEST(BinaryCodecBytes, IntegersAtEveryWidthBoundary) {
    const struct {
        Value value;
        uchar marker;
    } cases[] = {
        {0, 0x10},
        {255, 0x10},
        {256, 0x11},
        {65535, 0x11},
        {65536, 0x12},
        {qint64(4294967295LL), 0x12},
        {qint64(4294967296LL), 0x13},
        {qint64(-1), 0x13},
        {qint64(-4294967296LL), 0x13},
        {std::numeric_limits<qint64>::max(), 0x13},
        {std::numeric_limits<qint64>::min(), 0x13},
        {Value::fromUnsigned(quint64(std::numeric_limits<qint64>::max()) + 1), 0x14},
        {Value::fromUnsigned(std::numeric_limits<quint64>::max()), 0x14},
    };
    for (const auto& c : cases) {
        const QByteArray file = writeOrDie(c.value);
        EXPECT_EQ(uchar(file[8]), c.marker) << c.value.debugDescription().toStdString();
        EXPECT_EQ(file.size(), 8 + 1 + (1 << (c.marker & 0x0F)) + 1 + 32);
        const Value read = BinaryReader::read(file).value();
        EXPECT_EQ(read, c.value);
        EXPECT_EQ(read.isUnsignedInteger(), c.value.isUnsignedInteger());
    }
    const QByteArray unsignedMax = writeOrDie(Value::fromUnsigned(std::numeric_limits<quint64>::max()));
    EXPECT_EQ(unsignedMax.mid(8, 17), bytesFromHex("140000000000000000ffffffffffffffff"));
}

TEST(BinaryCodecBytes, UidsTakeOneTwoFourOrEightBytes) {
    EXPECT_EQ(writeOrDie(Uid{7}).mid(8, 2), bytesFromHex("8007"));
    EXPECT_EQ(writeOrDie(Uid{0x1234}).mid(8, 3), bytesFromHex("811234"));
    EXPECT_EQ(writeOrDie(Uid{0x123456}).mid(8, 5), bytesFromHex("8300123456"));
    EXPECT_EQ(writeOrDie(Uid{0x123456789A}).mid(8, 9), bytesFromHex("87000000123456789a"));
}

// Every class, and the edges of each, in one tree: any value that fails is named by its key.
TEST(BinaryCodecRoundTrip, EveryClassAndItsEdgesSurvive) {
    const QString emoji = QStringLiteral("caf\u00e9 \U0001F600 \U00010348 \u4e2d");
    Array longArray;
    Dictionary longDictionary;
    for (int i = 0; i < 40; ++i) {
        longArray.append(i % 3 == 0 ? Value(i) : Value(QString::number(i)));
        longDictionary.insert(QStringLiteral("key %1").arg(i), Array{i});
    }
    const Value tree(Dictionary{
        {"boolean", false},
        {"integer", 42},
        {"real", 3.25},
        {"string", "text"},
        {"data", QByteArray("\x00\x01\xFF", 3)},
        {"uid", Uid{3}},
        {"array", Array{1, "two", Array{3.0}, Dictionary{{"four", true}}}},
        {"dictionary", Dictionary{{"nested", Dictionary{{"deeper", Array{}}}}}},
        {"dates",
         Array{dateFromUtc(1900, 1, 1), dateFromUtc(1969, 12, 31), dateFromUtc(2038, 1, 20),
               dateFromUtc(3000, 1, 1), Date{0.0}, Date{-0.5}, Date{123456789.123456789}, Date{1e-9}}},
        {emoji, emoji},
        {QStringLiteral("\U0001F511"), Array{QStringLiteral("\U0001F600"), QString()}},
        {QString(), QStringLiteral("empty key")},
        {"nul", QString(QChar(0)) + QStringLiteral("inside")},
        {"ascii-limit", QString(QChar(0x7F))},
        {"latin-1", QString(QChar(0x80))},
        // A lone surrogate is not well-formed text, but the units are kept as they were.
        {"lone-surrogate", QString(QChar(0xD800))},
        {"empties", Array{Array{}, Dictionary{}, QString(), QByteArray()}},
        {"long-array", longArray},
        {"long-dictionary", longDictionary},
        {"long-string", QString(100000, u'z') + QStringLiteral("\u00e9")},
        {"long-data", QByteArray(70000, '\x5A')},
    });
    EXPECT_EQ(roundTrip(tree), tree);
    for (const auto& [key, value] : tree.dictionary()->map().asKeyValueRange())
        EXPECT_EQ(roundTrip(value), value) << key.toStdString();
    EXPECT_EQ(roundTrip(dateFromUtc(1900, 1, 1)).toDate()->toDateTime(),
              QDateTime(QDate(1900, 1, 1), QTime(0, 0), Qt::UTC));
}

TEST(BinaryCodecRoundTrip, RealsKeepSignNaNAndInfinity) {
    const Value negativeZero = roundTrip(-0.0);
    ASSERT_TRUE(negativeZero.toReal());
    EXPECT_TRUE(std::signbit(*negativeZero.toReal()));
    EXPECT_TRUE(std::isnan(*roundTrip(std::numeric_limits<double>::quiet_NaN()).toReal()));
    EXPECT_EQ(roundTrip(std::numeric_limits<double>::infinity()).toReal(),
              std::numeric_limits<double>::infinity());
    EXPECT_EQ(roundTrip(-std::numeric_limits<double>::infinity()).toReal(),
              -std::numeric_limits<double>::infinity());
    EXPECT_EQ(roundTrip(std::numeric_limits<double>::denorm_min()).toReal(),
              std::numeric_limits<double>::denorm_min());
    EXPECT_EQ(roundTrip(0.1).toReal(), 0.1);

    // 0.0 and -0.0 compare equal as values but are distinct objects in the file.
    const Value both = roundTrip(Array{0.0, -0.0});
    EXPECT_FALSE(std::signbit(*both.array()->at(0).toReal()));
    EXPECT_TRUE(std::signbit(*both.array()->at(1).toReal()));
}

TEST(BinaryCodecRoundTrip, ReferenceSizesGrowWithTheObjectCount) {
    const auto arrayOfDistinct = [](int count) {
        Array array;
        for (int i = 0; i < count; ++i)
            array.append(QString::number(i));
        return Value(array);
    };
    // The root plus its elements: 255 objects fit one-byte references, 256 do not.
    const QByteArray small = writeOrDie(arrayOfDistinct(254));
    EXPECT_EQ(objectCount(small), 255u);
    EXPECT_EQ(referenceSize(small), 1);
    const QByteArray boundary = writeOrDie(arrayOfDistinct(255));
    EXPECT_EQ(objectCount(boundary), 256u);
    EXPECT_EQ(referenceSize(boundary), 2);
    EXPECT_EQ(offsetSize(boundary), 2);
    EXPECT_EQ(BinaryReader::read(boundary).value(), arrayOfDistinct(255));

    const Value large = arrayOfDistinct(70000);
    const QByteArray largeFile = writeOrDie(large);
    EXPECT_EQ(referenceSize(largeFile), 4);
    EXPECT_EQ(offsetSize(largeFile), 4);
    EXPECT_EQ(BinaryReader::read(largeFile).value(), large);
}

TEST(BinaryCodecRoundTrip, EqualLeavesAreStoredOnceAndDistinctOnesApart) {
    Array repeated;
    for (int i = 0; i < 100; ++i)
        repeated.append(QStringLiteral("same"));
    EXPECT_EQ(objectCount(writeOrDie(repeated)), 2u);

    // Same bytes, different classes: each needs its own object.
    const Value mixed(Array{1, 1.0, true, "1", QByteArray("1"), Date{1.0}, Uid{1}, qint64(1)});
    EXPECT_EQ(objectCount(writeOrDie(mixed)), 8u);
    EXPECT_EQ(roundTrip(mixed), mixed);

    // Dictionary keys and string values share objects too.
    const Value keyAndValue(Dictionary{{"name", "name"}});
    EXPECT_EQ(objectCount(writeOrDie(keyAndValue)), 2u);
}

TEST(BinaryCodecWriter, NullValuesFailWithTheirPlace) {
    const auto atRoot = BinaryWriter::write(Value());
    ASSERT_FALSE(atRoot);
    EXPECT_TRUE(atRoot.error().contains(QStringLiteral("null")));

    const auto nested =
        BinaryWriter::write(Dictionary{{"a", Array{1, Dictionary{{"b", Value()}}}}, {"z", 2}});
    ASSERT_FALSE(nested);
    EXPECT_TRUE(nested.error().contains(QStringLiteral("/a/1/b"))) << nested.error().toStdString();
}

TEST(BinaryCodecReader, ReadsWhatAppleWritesBeyondOurOwnWriter) {
    // A set (0xC2), a 4-byte real (0x22), a 128-bit negative integer, a
    // 2-byte UID and a bplist01 header: all forms this writer never emits.
    const QByteArray file = bytesFromHex("62706c6973743031"
                                         "c20102"     // 0 @ 8: set of 1, 2
                                         "22bfc00000" // 1 @ 11: -1.5f
                                         "a20304"     // 2 @ 16: array of 3, 4
                                         "14ffffffffffffffff"
                                         "fffffffffffffffe" // 3 @ 19: -2 in 16 bytes
                                         "810102"           // 4 @ 36: UID 258
                                         "080b101324"
                                         "000000000000"
                                         "01"
                                         "01"
                                         "0000000000000005"
                                         "0000000000000000"
                                         "0000000000000027");
    const auto read = BinaryReader::read(file);
    ASSERT_TRUE(read) << read.error().toString().toStdString();
    EXPECT_EQ(*read, Value(Array{-1.5, Array{qint64(-2), Uid{258}}}));
}

// Widths of 3 bytes are legal in the trailer, though no writer we know picks them.
TEST(BinaryCodecReader, OddReferenceAndOffsetWidths) {
    const QByteArray file = bytesFromHex("62706c6973743030"
                                         "a1000001"     // 0 @ 8: array of object 1
                                         "5178"         // 1 @ 12: "x"
                                         "00000800000c" // offset table @ 14
                                         "000000000000"
                                         "03"
                                         "03"
                                         "0000000000000002"
                                         "0000000000000000"
                                         "000000000000000e");
    EXPECT_EQ(BinaryReader::read(file).value(), Value(Array{"x"}));
}

TEST(BinaryCodecReader, TopObjectNeedNotBeFirst) {
    const QByteArray file = bytesFromHex("62706c6973743030"
                                         "5178" // 0 @ 8: "x"
                                         "a100" // 1 @ 10: array of object 0
                                         "080a"
                                         "000000000000"
                                         "01"
                                         "01"
                                         "0000000000000002"
                                         "0000000000000001"
                                         "000000000000000c");
    EXPECT_EQ(BinaryReader::read(file).value(), Value(Array{"x"}));
}

TEST(BinaryCodecReader, ContainersSharedWithinReasonAreRead) {
    // One dictionary referenced from three places, as a writer that shares
    // identical containers produces: a small, bounded expansion.
    const QByteArray file = bytesFromHex("62706c6973743030"
                                         "a3010101" // 0 @ 8: array of object 1 three times
                                         "d10203"   // 1 @ 12: { k = v }
                                         "516b"     // 2 @ 15
                                         "5176"     // 3 @ 17
                                         "080c0f11"
                                         "000000000000"
                                         "01"
                                         "01"
                                         "0000000000000004"
                                         "0000000000000000"
                                         "0000000000000013");
    const Value shared(Dictionary{{"k", "v"}});
    EXPECT_EQ(BinaryReader::read(file).value(), Value(Array{shared, shared, shared}));
}
