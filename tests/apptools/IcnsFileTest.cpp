#include "IconSetBuilder.h"
#include "ProgramFiles.h"

#include "apptools/IcnsFile.h"

#include <QImage>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace quorlin::apptools;
using namespace quorlin::test;

namespace {

// A JPEG 2000 file's signature box: taken for no image.
const QByteArray jpeg2000 = QByteArray::fromHex("0000000c6a5020200d0a870a") + QByteArray(64, 'j');

QByteArray withWord(QByteArray bytes, qsizetype at, quint32 word) {
    return bytes.replace(at, 4, ProgramFiles::bigEndianWord(word));
}

} // namespace

TEST(IcnsFileTest, TakesTheWidestPngAndPassesOverEverythingElse) {
    const QByteArray small = pngImage(32);
    const QByteArray medium = pngImage(128);
    const QByteArray large = pngImage(256);
    const QByteArray mixed = iconSet({{"ic11", small}, {"ic08", large}, {"ic07", medium}});
    const QByteArray oldKinds = iconSet({{"is32", QByteArray(700, 'r')}, {"s8mk", QByteArray(256, 'm')}});
    // The second chunk claims to run past the end: the walk stops there.
    const QByteArray cutShort = withWord(mixed, 8 + 8 + small.size() + 4, 0x7FFFFFF0);
    const struct {
        const char* name;
        QByteArray bytes;
        std::optional<QByteArray> expected;
    } cases[] = {
        {"PNG chunks of several sizes", mixed, large},
        {"JPEG 2000 beside a PNG", iconSet({{"ic10", jpeg2000}, {"ic07", medium}}), medium},
        {"only run-length and mask chunks", oldKinds, std::nullopt},
        {"a chunk past the end", cutShort, small},
        {"a chunk shorter than its header", withWord(mixed, 8 + 4, 4), std::nullopt},
        {"a set that claims less than the file holds", withWord(mixed, 4, 8 + 8 + quint32(small.size())),
         small},
        {"a set that claims more than the file holds", withWord(mixed, 4, 0xFFFFFFFF), large},
        {"a PNG file", large, std::nullopt},
        {"empty", {}, std::nullopt},
    };
    for (const auto& example : cases)
        EXPECT_EQ(IcnsFile::bestImage(example.bytes), example.expected) << example.name;
}

TEST(IcnsFileTest, AnIconFileGivesAnImageThatDecodes) {
    const QByteArray medium = pngImage(128);
    const QByteArray large = pngImage(256);
    QTemporaryDir folder;
    const QString set = folder.filePath(QStringLiteral("App.icns"));
    const QString png = folder.filePath(QStringLiteral("App.png"));
    ASSERT_TRUE(ProgramFiles::write(set, iconSet({{"ic07", medium}, {"ic08", large}})));
    ASSERT_TRUE(ProgramFiles::write(png, medium));
    const auto fromSet = IcnsFile::iconImage(set);
    ASSERT_TRUE(fromSet);
    EXPECT_EQ(QImage::fromData(*fromSet).width(), 256);
    EXPECT_EQ(IcnsFile::iconImage(png), medium) << "an image that isn't a set is taken as it is";
    EXPECT_EQ(IcnsFile::iconImage(folder.filePath(QStringLiteral("missing.icns"))), std::nullopt);
}
