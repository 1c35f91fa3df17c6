#include "StandardizationFixtures.h"

#include "supply/GenericSupport.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace quorlin;

namespace {

plist::Dictionary manifestWith(const QString& domain) {
    return {{QStringLiteral("pfm_domain"), domain}, {QStringLiteral("pfm_subkeys"), plist::Array{}}};
}

TEST(GenericSupportTest, SortOrderEntriesSharePositionsAndLaterDuplicatesWin) {
    EXPECT_EQ(GenericSupport::processSortOrder(std::nullopt), std::nullopt);
    EXPECT_EQ(GenericSupport::processSortOrder(QStringList{}), GenericSupport::SortOrder{});
    const auto order = GenericSupport::processSortOrder(
        QStringList{"com.a, com.b", "", " com.c\n", "com.a", "com.d,\tcom.e\r\n"});
    const GenericSupport::SortOrder expected{{"com.a", 3}, {"com.b", 0}, {"", 1},
                                             {"com.c", 2}, {"com.d", 4}, {"com.e", 4}};
    EXPECT_EQ(order, expected);
}

// Sort priorities, the payload's common keys hidden on the first level of
// every domain but the general one, the authoring tool's placeholders
// scrubbed at every depth: each case folder with the settings it applies.
TEST(GenericSupportTest, AppliesEveryGoldenCase) {
    const QStringList cases = test::caseFolders(QStringLiteral("generic"));
    ASSERT_FALSE(cases.isEmpty());
    for (const QString& folder : cases) {
        SCOPED_TRACE(folder.toStdString());
        const QDir dir(folder);
        const plist::Dictionary settings = test::readDictionary(dir.filePath("settings.plist"));
        ASSERT_FALSE(settings.isEmpty());
        std::optional<QStringList> order;
        if (const plist::Array* entries = settings.array("SortOrder"))
            for (const plist::Value& entry : *entries)
                order = order.value_or(QStringList()) << *entry.toString();
        const GenericSupport support(std::nullopt, *settings.boolean("ScrubThirdPartyPlaceholders"),
                                     *settings.boolean("HidePayloadTopLevelKeys"), order);
        plist::Dictionary manifest = test::readDictionary(dir.filePath("input.plist"));
        support.apply(manifest);
        EXPECT_EQ(manifest, test::readDictionary(dir.filePath("expected.plist")));
    }
}

TEST(GenericSupportTest, IconsComeFromTheFirstFolderThatHasOne) {
    QTemporaryDir folder;
    ASSERT_TRUE(folder.isValid());
    const QByteArray red = test::pngBytes(Qt::red);
    const QByteArray blue = test::pngBytes(Qt::blue);
    ASSERT_TRUE(test::writeBytes(folder.filePath("b/com.example.png"), red));
    ASSERT_TRUE(test::writeBytes(folder.filePath("c/com.example.png"), blue));
    ASSERT_TRUE(
        test::writeBytes(folder.filePath("c/" + GenericSupport::generalManifestIconName() + ".png"), blue));
    const GenericSupport support({{folder.filePath("a"), folder.filePath("b"), folder.filePath("c")}}, false,
                                 false, std::nullopt);

    plist::Dictionary manifest = manifestWith("com.example");
    support.apply(manifest);
    EXPECT_EQ(manifest.data(QStringLiteral("pfm_quorlin_icon")), red);
    EXPECT_EQ(support.iconData(QString()), blue);
    EXPECT_EQ(support.iconData("com.missing"), std::nullopt);
    EXPECT_EQ(GenericSupport().iconData("com.example"), std::nullopt);
}

} // namespace
