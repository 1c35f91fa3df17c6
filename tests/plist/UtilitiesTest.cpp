#include "plist/Utilities.h"
#include "support/TestSupport.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using quorlin::Utilities;

TEST(CompareVersions, FollowsDottedNumericOrder) {
    EXPECT_EQ(Utilities::compareVersions("1.5", "1.5.0"), 0);
    EXPECT_EQ(Utilities::compareVersions("1.10", "1.9"), 1);
    EXPECT_EQ(Utilities::compareVersions("1.9", "1.10"), -1);
    EXPECT_EQ(Utilities::compareVersions("", "0"), 0);
    EXPECT_EQ(Utilities::compareVersions("", "0.0.1"), -1);
    EXPECT_EQ(Utilities::compareVersions("1.x.2", "1.2"), 0);
    EXPECT_EQ(Utilities::compareVersions("10.15.7", "11"), -1);
    EXPECT_EQ(Utilities::compareVersions("2", "1.99.99"), 1);
}

TEST(JoinedTermSeries, UsesTheSerialComma) {
    EXPECT_EQ(Utilities::joinedTermSeries({}, false), QString());
    EXPECT_EQ(Utilities::joinedTermSeries({"iOS"}, false), QStringLiteral("iOS"));
    EXPECT_EQ(Utilities::joinedTermSeries({"iOS", "macOS"}, true), QStringLiteral("iOS or macOS"));
    EXPECT_EQ(Utilities::joinedTermSeries({"iOS", "macOS", "tvOS"}, false),
              QStringLiteral("iOS, macOS, and tvOS"));
}

TEST(PlistBytes, ReportsTheRootClassSeparatelyFromInvalidData) {
    const QByteArray arrayPlist = "<?xml version=\"1.0\"?><plist version=\"1.0\"><array/></plist>";
    const auto asDictionary = Utilities::getDictionaryFromPlistBytes(arrayPlist);
    ASSERT_FALSE(asDictionary);
    EXPECT_EQ(asDictionary.error(),
              Utilities::GetDictionaryFromPlistBytesErrors::failurePlistRootIsNotDictionary);
    EXPECT_TRUE(Utilities::getArrayFromPlistBytes(arrayPlist));

    const auto garbage = Utilities::getArrayFromPlistBytes("<?xml version=\"1.0\"?><plist><array>");
    ASSERT_FALSE(garbage);
    EXPECT_EQ(garbage.error(), Utilities::GetArrayFromPlistBytesErrors::failurePlistInvalid);
}

TEST(FilePaths, UniquePathCountsUpAndRelativePathClimbs) {
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString first = Utilities::uniqueFilePath(dir.path(), "Profile", "mobileconfig");
    EXPECT_EQ(first, dir.filePath("Profile.mobileconfig"));
    QFile(first).open(QIODevice::WriteOnly);
    EXPECT_EQ(Utilities::uniqueFilePath(dir.path(), "Profile", "mobileconfig"),
              dir.filePath("Profile(1).mobileconfig"));

    EXPECT_EQ(Utilities::relativePath("/a/b/c/file.plist", "/a/b/d/e.png"), QStringLiteral("../d/e.png"));
    EXPECT_EQ(Utilities::relativePath("/a/b/file.plist", "/a/b/icon.png"), QStringLiteral("icon.png"));
    EXPECT_EQ(Utilities::relativePath("/x/y/file", "/a/./b"), QStringLiteral("../../a/b"));

    EXPECT_EQ(Utilities::readLeadingBytes(first, 8), QByteArray());
    EXPECT_FALSE(Utilities::readLeadingBytes(dir.filePath("absent"), 8));
}
