#include "ProgramFiles.h"

#include "apptools/BinaryStream.h"
#include "apptools/MachOFile.h"
#include "support/TestSupport.h"

#include <QBuffer>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace quorlin::apptools;
using quorlin::test::ProgramFiles;

namespace {

class MachOFileTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_FALSE(ProgramFiles::arm64().isEmpty()) << "clang and ld64.lld are needed";
    }

    std::optional<QStringList> architecturesOf(const QByteArray& bytes) {
        const QString path = m_folder.filePath(QStringLiteral("program"));
        EXPECT_TRUE(ProgramFiles::write(path, bytes));
        const auto file = MachOFile::read(path);
        return file ? std::optional<QStringList>(file->architectures()) : std::nullopt;
    }

    // A universal header whose one entry says where its slice lies.
    static QByteArray universalWithEntry(quint32 offset, quint32 size, qsizetype fileSize) {
        QByteArray bytes = ProgramFiles::bigEndianWord(0xCAFEBABE) + ProgramFiles::bigEndianWord(1) +
                           ProgramFiles::bigEndianWord(ProgramFiles::cpuArm64) +
                           ProgramFiles::bigEndianWord(0) + ProgramFiles::bigEndianWord(offset) +
                           ProgramFiles::bigEndianWord(size) + ProgramFiles::bigEndianWord(14);
        return bytes + QByteArray(fileSize - bytes.size(), '\0');
    }

    QTemporaryDir m_folder;
};

} // namespace

TEST_F(MachOFileTest, NamesTheArchitecturesInTheOrderOfTheFile) {
    const QByteArray& arm = ProgramFiles::arm64();
    const QByteArray& intel = ProgramFiles::x86_64();
    const QByteArray i386Header = ProgramFiles::bigEndianWord(0xCEFAEDFE) +
                                  QByteArray::fromHex("07000000030000000200000000000000000000000000");
    const struct {
        const char* name;
        QByteArray bytes;
        QStringList expected;
    } cases[] = {
        {"thin arm64", arm, {"arm64"}},
        {"thin x86_64", intel, {"x86_64"}},
        {"thin 32-bit little-endian", i386Header, {"i386"}},
        {"thin 32-bit big-endian", ProgramFiles::ppcHeader(), {"ppc"}},
        {"universal, Intel first",
         ProgramFiles::universal({{ProgramFiles::cpuX86_64, intel}, {ProgramFiles::cpuArm64, arm}}),
         {"x86_64", "arm64"}},
        {"universal i386 and x86_64",
         ProgramFiles::universal({{ProgramFiles::cpuI386, i386Header}, {ProgramFiles::cpuX86_64, intel}}),
         {"i386", "x86_64"}},
        {"unknown type kept in place",
         ProgramFiles::universal({{ProgramFiles::cpuArm64, arm}, {0x0100000D, arm}, {12, arm}}),
         {"arm64", "<unknown>", "arm"}},
        {"universal without entries",
         ProgramFiles::bigEndianWord(0xCAFEBABE) + ProgramFiles::bigEndianWord(0),
         {}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(architecturesOf(c.bytes), c.expected) << c.name;
}

TEST_F(MachOFileTest, RefusesWhatIsNotAProgramFileOrPromisesMoreThanItHolds) {
    const QByteArray twoSlices = ProgramFiles::universal(
        {{ProgramFiles::cpuArm64, ProgramFiles::arm64()}, {ProgramFiles::cpuX86_64, ProgramFiles::x86_64()}});
    QByteArray overlapping = twoSlices;
    overlapping.replace(8 + 20 + 8, 4, overlapping.mid(8 + 8, 4)); // second slice starts where the first does
    const struct {
        const char* name;
        QByteArray bytes;
    } cases[] = {
        {"empty file", {}},
        {"text", "#!/bin/sh\necho hello\n"},
        {"64-bit universal magic", ProgramFiles::bigEndianWord(0xCAFEBABF) + ProgramFiles::bigEndianWord(0)},
        {"swapped universal magic", ProgramFiles::bigEndianWord(0xBEBAFECA) + ProgramFiles::bigEndianWord(0)},
        {"truncated thin header", ProgramFiles::arm64().left(6)},
        {"count beyond the table",
         ProgramFiles::bigEndianWord(0xCAFEBABE) + ProgramFiles::bigEndianWord(3) + twoSlices.mid(8, 40)},
        {"count of a class file",
         ProgramFiles::bigEndianWord(0xCAFEBABE) + ProgramFiles::bigEndianWord(0x00000034)},
        {"slice past the end", universalWithEntry(4096, 8192, 8192)},
        {"slice over the table", universalWithEntry(8, 64, 4096)},
        {"overlapping slices", overlapping},
    };
    for (const auto& c : cases)
        EXPECT_EQ(architecturesOf(c.bytes), std::nullopt) << c.name;
    EXPECT_EQ(MachOFile::read(m_folder.path()), std::nullopt) << "a folder";
    EXPECT_EQ(MachOFile::read(m_folder.filePath(QStringLiteral("missing"))), std::nullopt);
}

TEST_F(MachOFileTest, FindsTheSignatureOfTheSliceAnAppleSiliconMacRuns) {
    const QString path = m_folder.filePath(QStringLiteral("universal"));
    ASSERT_TRUE(ProgramFiles::write(
        path, ProgramFiles::universal({{ProgramFiles::cpuX86_64, ProgramFiles::x86_64()},
                                       {ProgramFiles::cpuArm64, ProgramFiles::arm64()}})));
    const auto file = MachOFile::read(path);
    ASSERT_TRUE(file);
    const auto slice = file->preferredSlice();
    ASSERT_TRUE(slice);
    EXPECT_EQ(slice->architecture, QStringLiteral("arm64"));
    const auto signature = file->codeSignature(*slice);
    ASSERT_TRUE(signature);
    EXPECT_EQ(signature->left(4), ProgramFiles::bigEndianWord(0xFADE0CC0));
    EXPECT_EQ(file->codeSignature(file->slices().front()), std::nullopt) << "the Intel slice is unsigned";
}

TEST_F(MachOFileTest, ReadsAFileOfGigabytesWithoutReadingItWhole) {
    // A sparse file: the universal table at the start, the arm64 slice 3 GB in.
    const QString path = m_folder.filePath(QStringLiteral("huge"));
    const quint32 offset = 3u << 30;
    const QByteArray& arm = ProgramFiles::arm64();
    QByteArray header = ProgramFiles::bigEndianWord(0xCAFEBABE) + ProgramFiles::bigEndianWord(1) +
                        ProgramFiles::bigEndianWord(ProgramFiles::cpuArm64) + ProgramFiles::bigEndianWord(0) +
                        ProgramFiles::bigEndianWord(offset) +
                        ProgramFiles::bigEndianWord(quint32(arm.size())) + ProgramFiles::bigEndianWord(14);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(header);
    ASSERT_TRUE(file.seek(offset));
    file.write(arm);
    file.close();

    const auto program = MachOFile::read(path);
    ASSERT_TRUE(program);
    EXPECT_EQ(program->architectures(), QStringList{"arm64"});
    const auto signature = program->codeSignature(*program->preferredSlice());
    ASSERT_TRUE(signature);
    EXPECT_LT(signature->size(), 4096);
}

TEST(BinaryStreamTest, ReportsWhyAFileCannotBeReadAndNeverReadsShort) {
    QTemporaryDir folder;
    using Kind = BinaryStreamError::Kind;
    EXPECT_EQ(BinaryStream::open(folder.filePath(QStringLiteral("missing"))).error().kind,
              Kind::FileDoesNotExist);
    EXPECT_EQ(BinaryStream::open(folder.path()).error().kind, Kind::FileIsADirectory);

    auto buffer = std::make_unique<QBuffer>();
    buffer->setData(QByteArray::fromHex("0102030480000001"));
    buffer->open(QIODevice::ReadOnly);
    BinaryStream stream = BinaryStream::overDevice(std::move(buffer), QStringLiteral("bytes"));
    EXPECT_EQ(*stream.readUInt16BigEndian(), 0x0102);
    EXPECT_EQ(*stream.readUInt16LittleEndian(), 0x0403);
    EXPECT_EQ(*stream.readFixedPoint(2), -128.0);
    EXPECT_EQ(stream.readFixedPoint(3).error().kind, Kind::InvalidFixedFloatingPointFormat);
    EXPECT_EQ(stream.read(3).error().kind, Kind::ReadError);
    EXPECT_EQ(stream.position(), 6) << "a failed read doesn't move";
    EXPECT_EQ(stream.seek(9).error().kind, Kind::ReadError);
    ASSERT_TRUE(stream.seek(0));
    EXPECT_EQ(*stream.readUInt64BigEndian(), 0x0102030480000001ull);
}
