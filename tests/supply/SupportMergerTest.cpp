#include "StandardizationFixtures.h"

#include "supply/SupportMerger.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace quorlin;
using test::keyArray;
using test::manifestKey;

namespace {

const QString subkeysKey = QStringLiteral("pfm_subkeys");

TEST(SupportMergerTest, MergesEveryGoldenCase) {
    const QStringList cases = test::caseFolders(QStringLiteral("support"));
    ASSERT_FALSE(cases.isEmpty());
    for (const QString& folder : cases) {
        SCOPED_TRACE(folder.toStdString());
        const QDir dir(folder);
        const plist::Dictionary expected = test::readDictionary(dir.filePath("expected.plist"));
        ASSERT_FALSE(expected.isEmpty());
        EXPECT_EQ(SupportMerger::mergeSupport(test::readDictionary(dir.filePath("manifest.plist")),
                                              test::readDictionary(dir.filePath("support.plist"))),
                  expected);
    }
}

class SupportFileTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(m_folder.isValid()); }
    QString folder(const QString& name) const { return m_folder.filePath(name); }

    QTemporaryDir m_folder;
};

TEST_F(SupportFileTest, TheFirstFolderHoldingTheFileIsUsed) {
    const plist::Dictionary first{{QStringLiteral("pfm_title"), "First"}};
    const plist::Dictionary second{{QStringLiteral("pfm_title"), "Second"}};
    ASSERT_TRUE(test::writeManifest(folder("b/com.example manifest-support.plist"), first));
    ASSERT_TRUE(test::writeManifest(folder("c/com.example manifest-support.plist"), second));
    EXPECT_EQ(SupportMerger::support("com.example", {folder("a"), folder("b"), folder("c")}), first);
    EXPECT_EQ(SupportMerger::support("com.other", {folder("a"), folder("b"), folder("c")}), std::nullopt);
}

TEST_F(SupportFileTest, TheGeneralPayloadsFileIsNamedAfterConfiguration) {
    const plist::Dictionary support{{QStringLiteral("pfm_title"), "General"}};
    ASSERT_TRUE(test::writeManifest(folder("Configuration manifest-support.plist"), support));
    EXPECT_EQ(SupportMerger::support(QString(), {m_folder.path()}), support);
}

TEST_F(SupportFileTest, AnUnreadableFileGivesNoSupportEvenWhenALaterFolderHasOne) {
    ASSERT_TRUE(test::writeBytes(folder("a/com.example manifest-support.plist"), "<plist><dict><key>"));
    ASSERT_TRUE(test::writeManifest(folder("b/com.example manifest-support.plist"), {{"pfm_title", "B"}}));
    ASSERT_TRUE(test::writeBytes(folder("c/com.array manifest-support.plist"), "(one, two)"));
    EXPECT_EQ(SupportMerger::support("com.example", {folder("a"), folder("b")}), std::nullopt);
    EXPECT_EQ(SupportMerger::support("com.array", {folder("c")}), std::nullopt);
}

TEST_F(SupportFileTest, ADomainCannotLeadOutOfTheFolder) {
    ASSERT_TRUE(test::writeManifest(folder("outside manifest-support.plist"), {{"pfm_title", "Outside"}}));
    ASSERT_TRUE(QDir().mkpath(folder("inner")));
    EXPECT_EQ(SupportMerger::support("../outside", {folder("inner")}), std::nullopt);
}

} // namespace
