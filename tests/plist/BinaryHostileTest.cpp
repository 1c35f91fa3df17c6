#include "plist/BinaryReader.h"
#include "plist/BinaryWriter.h"
#include "support/DataTrees.h"

#include <gtest/gtest.h>

#include <functional>

using namespace quorlin;
using namespace quorlin::plist;

namespace {

void appendBigEndian(QByteArray& out, quint64 value, int size) {
    for (int shift = 8 * (size - 1); shift >= 0; shift -= 8)
        out.append(char(uchar(value >> shift)));
}

// A file from objects given as hex, laid out in order after the header,
// with an honest offset table and trailer that a test may then spoil.
QByteArray assemble(const QList<QByteArray>& hexObjects, int referenceSize = 1, quint64 topObject = 0) {
    QByteArray file("bplist00");
    QList<quint64> offsets;
    for (const QByteArray& hex : hexObjects) {
        offsets.append(quint64(file.size()));
        file.append(QByteArray::fromHex(hex));
    }
    const quint64 tableOffset = quint64(file.size());
    const int offsetSize = tableOffset < 0x100 ? 1 : tableOffset < 0x10000 ? 2 : 4;
    for (const quint64 offset : offsets)
        appendBigEndian(file, offset, offsetSize);
    file.append(6, '\0');
    file.append(char(offsetSize));
    file.append(char(referenceSize));
    appendBigEndian(file, quint64(hexObjects.size()), 8);
    appendBigEndian(file, topObject, 8);
    appendBigEndian(file, tableOffset, 8);
    return file;
}

// Trailer fields by their distance from the end of the file.
enum class Field { OffsetSize = 26, ReferenceSize = 25, ObjectCount = 24, TopObject = 16, TableOffset = 8 };

QByteArray withField(QByteArray file, Field field, quint64 value) {
    const qsizetype at = file.size() - qsizetype(field);
    if (field == Field::OffsetSize || field == Field::ReferenceSize) {
        file[at] = char(uchar(value));
        return file;
    }
    QByteArray bytes;
    appendBigEndian(bytes, value, 8);
    file.replace(at, 8, bytes);
    return file;
}

quint64 fieldOf(const QByteArray& file, Field field) {
    return file.mid(file.size() - qsizetype(field), 8).toHex().toULongLong(nullptr, 16);
}

::testing::AssertionResult isRefused(const QByteArray& file) {
    const auto read = BinaryReader::read(file);
    if (read)
        return ::testing::AssertionFailure()
               << "read as " << read->debugDescription().left(200).toStdString();
    if (read.error().reason.isEmpty() || read.error().byteOffset < 0)
        return ::testing::AssertionFailure() << "error without reason or offset";
    return ::testing::AssertionSuccess() << read.error().toString().toStdString();
}

QByteArray sampleFile() {
    const Value tree(Dictionary{
        {"PayloadContent", Array{Dictionary{{"Name", QStringLiteral("caf\u00e9")}, {"Count", qint64(70000)}},
                                 Array{1.5, true, Date{1.0}}}},
        {"Data", QByteArray(20, '\x01')},
        {"Long", QString(20, u'x')},
        {"Unsigned", Value::fromUnsigned(~quint64(0))},
        {"Uid", Uid{9}},
    });
    return BinaryWriter::write(tree).value();
}

} // namespace

TEST(BinaryHostileFile, EveryTruncationIsRefused) {
    const QByteArray file = sampleFile();
    ASSERT_TRUE(BinaryReader::read(file));
    for (qsizetype length = 0; length < file.size(); ++length) {
        const auto read = BinaryReader::read(file.left(length));
        EXPECT_FALSE(read) << "prefix of " << length << " bytes";
        if (!read) {
            EXPECT_FALSE(read.error().reason.isEmpty());
        }
    }
}

TEST(BinaryHostileFile, CorruptingAnySingleByteNeverCrashesAndReadsOnlyWritableTrees) {
    const QByteArray file = sampleFile();
    const uchar replacements[] = {0x00, 0x01, 0x0F, 0x7F, 0x80, 0xAF, 0xDF, 0xFF};
    for (qsizetype i = 0; i < file.size(); ++i) {
        for (const uchar replacement : replacements) {
            QByteArray spoiled = file;
            spoiled[i] = char(replacement);
            const auto read = BinaryReader::read(spoiled);
            // Whatever is accepted must be a proper tree, which the writer can write.
            if (read) {
                EXPECT_TRUE(BinaryWriter::write(*read)) << "byte " << i << " set to " << int(replacement);
            }
        }
    }
}

TEST(BinaryHostileFile, HeaderAndSizeAreChecked) {
    EXPECT_TRUE(isRefused(QByteArray()));
    EXPECT_TRUE(isRefused("bplist00"));
    EXPECT_TRUE(isRefused(QByteArray("bplist00") + QByteArray(32, '\0')));
    QByteArray otherVersion = assemble({"09"});
    otherVersion.replace(6, 2, "15");
    EXPECT_TRUE(isRefused(otherVersion));
    QByteArray notBinary = assemble({"09"});
    notBinary[0] = 'B';
    EXPECT_TRUE(isRefused(notBinary));
    EXPECT_EQ(BinaryReader::read(assemble({"09"})).value(), Value(true));
}

TEST(BinaryHostileFile, AbsurdTrailerSizesAreRefused) {
    const QByteArray file = assemble({"a20102", "5161", "5162"});
    ASSERT_TRUE(BinaryReader::read(file));
    for (const quint64 size : {0, 9, 16, 255}) {
        EXPECT_TRUE(isRefused(withField(file, Field::OffsetSize, size))) << size;
        EXPECT_TRUE(isRefused(withField(file, Field::ReferenceSize, size))) << size;
    }
    for (const quint64 count : {quint64(0), quint64(4), quint64(1) << 32, ~quint64(0), ~quint64(0) / 2 + 1})
        EXPECT_TRUE(isRefused(withField(file, Field::ObjectCount, count))) << count;
    const quint64 tableOffset = fieldOf(file, Field::TableOffset);
    for (const quint64 offset : {quint64(0), quint64(7), quint64(8), tableOffset + 1, quint64(file.size()),
                                 ~quint64(0), ~quint64(0) - 30})
        EXPECT_TRUE(isRefused(withField(file, Field::TableOffset, offset))) << offset;
}

TEST(BinaryHostileFile, TopObjectOutOfRangeIsRefused) {
    const QByteArray file = assemble({"09", "08"});
    EXPECT_EQ(BinaryReader::read(withField(file, Field::TopObject, 1)).value(), Value(false));
    EXPECT_TRUE(isRefused(withField(file, Field::TopObject, 2)));
    EXPECT_TRUE(isRefused(withField(file, Field::TopObject, ~quint64(0))));
}

TEST(BinaryHostileFile, OffsetsOutsideTheObjectAreaAreRefused) {
    const QByteArray file = assemble({"a101", "5161"});
    const qsizetype table = qsizetype(fieldOf(file, Field::TableOffset));
    for (const uchar offset : {uchar(0), uchar(7), uchar(table), uchar(table + 1), uchar(0xFF)}) {
        QByteArray spoiled = file;
        spoiled[table + 1] = char(offset);
        const auto read = BinaryReader::read(spoiled);
        ASSERT_FALSE(read) << int(offset);
        EXPECT_EQ(read.error().byteOffset, table + 1);
    }
}

// Objects cut short by the offset table, huge declared lengths in a tiny
// file, unknown markers and widths, keys that aren't strings, reference
// cycles: each file laid out honestly around its objects.
TEST(BinaryHostileFile, MalformedObjectsAreRefused) {
    const QJsonArray cases = test::dataJson(QStringLiteral("plist/binary-malformed-objects.json")).toArray();
    ASSERT_GT(cases.size(), 40);
    for (const QJsonValue& c : cases) {
        QList<QByteArray> objects;
        for (const QJsonValue& object : c["objects"].toArray())
            objects << object.toString().toLatin1();
        EXPECT_TRUE(isRefused(assemble(objects))) << c["fault"].toString().toStdString();
    }
}

TEST(BinaryHostileFile, ReferenceCyclesAndReferencesOutOfRangeAreRefusedWhereTheyStand) {
    const auto read = BinaryReader::read(assemble({"a20101", "a100"}));
    ASSERT_FALSE(read);
    EXPECT_EQ(read.error().byteOffset, 8 + 3 + 1); // the reference that closes the loop

    const auto outOfRange = BinaryReader::read(assemble({"a20105", "09"}));
    ASSERT_FALSE(outOfRange);
    EXPECT_EQ(outOfRange.error().byteOffset, 8 + 2);
    EXPECT_TRUE(isRefused(assemble({"a1ffff", "09"}, 2)));
}

TEST(BinaryHostileFile, NestingIsLimited) {
    const auto nested = [](int depth) {
        Value value = QStringLiteral("leaf");
        for (int i = 0; i < depth; ++i)
            value = Array{value};
        return BinaryWriter::write(value).value();
    };
    EXPECT_TRUE(BinaryReader::read(nested(512)));
    EXPECT_TRUE(isRefused(nested(513)));
    EXPECT_TRUE(isRefused(nested(5000)));
    EXPECT_TRUE(BinaryReader::read(nested(3), ReadLimits{3}));
    EXPECT_FALSE(BinaryReader::read(nested(4), ReadLimits{3}));
}

// Object k holds object k+1. The root reaches the middle of the chain first,
// so the second half is decoded and cached; then the head, whose fresh
// descent stays shallow until it meets the cached half: the tree is as deep
// as the whole chain all the same.
TEST(BinaryHostileFile, SharedChainsCannotExceedTheNestingLimit) {
    const auto chain = [](int length) {
        const auto reference = [](int index) { return QByteArray::number(index, 16).rightJustified(4, '0'); };
        QList<QByteArray> objects{"a2" + reference(length / 2) + reference(1)};
        for (int i = 1; i <= length; ++i)
            objects.append("a1" + reference(i + 1));
        objects.append("5178");
        return assemble(objects, 2);
    };
    EXPECT_TRUE(BinaryReader::read(chain(500)));
    const auto deep = BinaryReader::read(chain(600));
    ASSERT_FALSE(deep);
    EXPECT_TRUE(deep.error().reason.contains(QStringLiteral("nested")))
        << deep.error().toString().toStdString();
}

// Object k is an array holding object k+1 twice: a few hundred bytes that
// stand for a tree of 2^61 nodes. Reading ends with an error; smaller
// sharing reads, the shared parts reused rather than copied.
TEST(BinaryHostileFile, ExponentialSharingIsRefusedAndModestSharingRead) {
    const auto ladder = [](int levels) {
        QList<QByteArray> objects;
        for (int k = 0; k < levels; ++k) {
            const QByteArray next = QByteArray::number(k + 1, 16).rightJustified(2, '0');
            objects.append("a2" + next + next);
        }
        objects.append("5178");
        return assemble(objects);
    };
    for (const int levels : {30, 60}) {
        const auto read = BinaryReader::read(ladder(levels));
        ASSERT_FALSE(read);
        EXPECT_TRUE(read.error().reason.contains(QStringLiteral("larger than the file")));
    }

    const auto small = BinaryReader::read(ladder(8));
    ASSERT_TRUE(small);
    Value expected = QStringLiteral("x");
    for (int k = 0; k < 8; ++k)
        expected = Array{expected, expected};
    EXPECT_EQ(*small, expected);
}

// Object k is an array holding object k+1: refused where the nesting limit
// is passed, never walked down all the way.
TEST(BinaryHostileFile, HundredThousandLevelsAreRefusedAtTheNestingLimit) {
    QList<QByteArray> objects;
    for (int k = 1; k <= 100000; ++k)
        objects.append("a1" + QByteArray::number(k, 16).rightJustified(8, '0'));
    objects.append("5178");
    const auto read = BinaryReader::read(assemble(objects, 4));
    ASSERT_FALSE(read);
    EXPECT_TRUE(read.error().reason.contains(QStringLiteral("nested")));
}

// A million references to one string read as a million values that share
// that one string, not a million copies of it.
TEST(BinaryHostileFile, OneObjectSharedAMillionTimesReadsShared) {
    const int count = 1000000;
    const QByteArray array =
        "af12" + QByteArray::number(count, 16).rightJustified(8, '0') + QByteArray("01").repeated(count);
    const auto read = BinaryReader::read(assemble({array, "5178"}));
    ASSERT_TRUE(read) << read.error().toString().toStdString();
    ASSERT_EQ(read->array()->size(), count);
    EXPECT_EQ(read->array()->last(), Value(QStringLiteral("x")));
    EXPECT_EQ(read->array()->first().toString()->constData(), read->array()->last().toString()->constData());
}
