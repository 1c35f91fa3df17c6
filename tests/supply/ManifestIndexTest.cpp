#include "supply/ManifestIndex.h"

#include "plist/XmlWriter.h"

#include <gtest/gtest.h>

using namespace quorlin;
using plist::Dictionary;

namespace {

QByteArray indexBytes(const Dictionary& root) {
    return *plist::XmlWriter::write(root);
}

Dictionary entry(const QString& path, std::optional<double> modified = 1000.0) {
    Dictionary result{{"path", path}, {"version", 3}};
    if (modified)
        result.insert("modified", plist::Date{*modified});
    return result;
}

} // namespace

TEST(ManifestIndex, ReadsEveryCategoryButTheDevelopersOne) {
    const Dictionary root{
        {"ManifestsApple",
         Dictionary{{"com.apple.dock", entry("Manifests/ManifestsApple/com.apple.dock.plist")}}},
        {"ManagedPreferencesApplications",
         Dictionary{{"com.example.app", entry("Manifests/Apps/com.example.app.plist", std::nullopt)}}},
        {"ManagedPreferencesDeveloper", Dictionary{{"com.example.dev", entry("Manifests/Dev/dev.plist")}}},
        {"NotACategory", "text"}};
    const auto items = ManifestIndex::parse(indexBytes(root));
    ASSERT_TRUE(items);
    ASSERT_EQ(items->size(), 2);
    const IndexItem dock{"com.apple.dock", plist::Date{1000.0},
                         "Manifests/ManifestsApple/com.apple.dock.plist", 3};
    EXPECT_TRUE(items->contains(dock));
    const IndexItem app{"com.example.app", std::nullopt, "Manifests/Apps/com.example.app.plist", 3};
    EXPECT_TRUE(items->contains(app));
}

TEST(ManifestIndex, SkipsEntriesWhosePathCouldLeaveTheStore) {
    const QStringList unsafe{"/etc/passwd",
                             "../x.plist",
                             "~/x.plist",
                             "/../x.plist",
                             "Manifests/../../x",
                             "Manifests/./x.plist",
                             "Manifests//x.plist",
                             "Manifests\\..\\x",
                             "Manifests/%2e%2e/x",
                             "Manifests/x\n.plist",
                             "",
                             "Manifests/.."};
    Dictionary domains;
    for (int i = 0; i < unsafe.size(); ++i)
        domains.insert(QStringLiteral("bad%1").arg(i), entry(unsafe[i]));
    domains.insert("good", entry("Manifests/ManifestsApple/good.plist"));
    domains.insert("no-path", Dictionary{{"modified", plist::Date{1.0}}});
    domains.insert("number-path", Dictionary{{"path", 5}});
    const auto items = ManifestIndex::parse(indexBytes(Dictionary{{"ManifestsApple", domains}}));
    ASSERT_TRUE(items);
    ASSERT_EQ(items->size(), 1);
    EXPECT_EQ(items->first().indexDomain, "good");
    for (const QString& path : unsafe)
        EXPECT_FALSE(ManifestIndex::isSafePath(path)) << path.toStdString();
}

TEST(ManifestIndex, FailsOnlyForWhatIsNoDictionaryOfCategories) {
    EXPECT_FALSE(ManifestIndex::parse(QByteArray("<?xml version=\"1.0\"?><plist><dict><key>a</key>")));
    EXPECT_TRUE(ManifestIndex::parse(indexBytes({}))->isEmpty());
    EXPECT_FALSE(ManifestIndex::parse(*plist::XmlWriter::write(plist::Array{"x"})));
    EXPECT_FALSE(ManifestIndex::parse(QByteArray(ManifestIndex::maximumIndexSize + 1, ' ')));
}
