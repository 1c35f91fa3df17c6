#include "StandardizationFixtures.h"

#include "supply/BundledManifestRepository.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace quorlin;

namespace {

plist::Dictionary withEntries(const QString& domain, const plist::Dictionary& entries) {
    return test::manifestTree(domain, {}, entries);
}

plist::Date date(int year, int month, int day) {
    return plist::Date::fromDateTime(QDateTime(QDate(year, month, day), QTime(12, 0), Qt::UTC));
}

class BundledManifestRepositoryTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(m_folder.isValid()); }
    void write(const QString& name, const plist::Dictionary& manifest) {
        ASSERT_TRUE(test::writeManifest(m_folder.filePath(name), manifest));
    }

    QTemporaryDir m_folder;
};

} // namespace

TEST_F(BundledManifestRepositoryTest, DecodesIconsAndKeepsTheTemplateFlagBesideThem) {
    write("a.plist", withEntries("com.example.red", {{"pfm_quorlin_icon", test::pngBytes(Qt::red, 6)}}));
    write("b.plist", withEntries("com.example.template", {{"pfm_quorlin_icon", test::pngBytes(Qt::black)},
                                                          {"pfm_quorlin_icon_is_template", true}}));
    // Any number sets the flag, as the writers of manifests differ.
    write("c.plist", withEntries("com.example.numbered", {{"pfm_quorlin_icon", test::pngBytes(Qt::blue)},
                                                          {"pfm_quorlin_icon_is_template", 1}}));
    write("d.plist", withEntries("com.example.plain", {{"pfm_quorlin_icon", test::pngBytes(Qt::green)},
                                                       {"pfm_quorlin_icon_is_template", "yes"}}));
    BundledManifestRepository repository(m_folder.path());

    const auto red = repository.icon("com.example.red");
    ASSERT_TRUE(red);
    EXPECT_EQ(red->image.size(), QSize(6, 6));
    EXPECT_EQ(test::firstPixel(red->image), QColor(Qt::red));
    EXPECT_FALSE(red->isTemplate);
    EXPECT_TRUE(repository.icon("com.example.template")->isTemplate);
    EXPECT_TRUE(repository.icon("com.example.numbered")->isTemplate);
    EXPECT_FALSE(repository.icon("com.example.plain")->isTemplate);
    // Asked again, the same image.
    EXPECT_EQ(repository.icon("com.example.red")->image, red->image);
}

TEST_F(BundledManifestRepositoryTest, GivesNoIconWhereThereIsNothingToDecode) {
    write("a.plist", withEntries("com.example.none", {}));
    write("b.plist", withEntries("com.example.text", {{"pfm_quorlin_icon", "not data"}}));
    write("c.plist",
          withEntries("com.example.garbled", {{"pfm_quorlin_icon", QByteArray("\x89PNG\r\n\x1a\nrest")}}));
    BundledManifestRepository repository(m_folder.path());
    for (const char* domain :
         {"com.example.none", "com.example.text", "com.example.garbled", "com.example.absent"})
        EXPECT_FALSE(repository.icon(domain)) << domain;
}

TEST_F(BundledManifestRepositoryTest, AReloadServesTheIconOfTheNewManifest) {
    const QString file = m_folder.filePath("a.plist");
    write("a.plist", withEntries("com.example.app", {{"pfm_quorlin_icon", test::pngBytes(Qt::red)}}));
    BundledManifestRepository repository(m_folder.path());
    ASSERT_EQ(test::firstPixel(repository.icon("com.example.app")->image), QColor(Qt::red));

    write("a.plist", withEntries("com.example.app", {{"pfm_quorlin_icon", test::pngBytes(Qt::blue)}}));
    repository.reloadManifests({file});
    EXPECT_EQ(test::firstPixel(repository.icon("com.example.app")->image), QColor(Qt::blue));
}

TEST_F(BundledManifestRepositoryTest, TheMostRecentModificationDateIsTheNewestOfTheSet) {
    write("a.plist", withEntries("com.example.a", {{"pfm_quorlin_last_modification", date(2022, 5, 1)}}));
    write("b.plist", withEntries("com.example.b", {{"pfm_quorlin_last_modification", date(2024, 2, 29)}}));
    write("c.plist", withEntries("com.example.c", {{"pfm_quorlin_last_modification", "2030-01-01"}}));
    write("d.plist", withEntries("com.example.d", {}));
    write("e.plist", withEntries("com.example.e", {{"pfm_quorlin_last_modification", date(2023, 12, 31)}}));
    BundledManifestRepository repository(m_folder.path());
    EXPECT_EQ(repository.mostRecentModificationDate(), date(2024, 2, 29));
    EXPECT_EQ(repository.mostRecentModificationDate(), date(2024, 2, 29));

    // A newer manifest that arrives by a reload counts.
    write("f.plist", withEntries("com.example.f", {{"pfm_quorlin_last_modification", date(2025, 1, 1)}}));
    repository.reloadManifests({m_folder.filePath("f.plist")});
    EXPECT_EQ(repository.mostRecentModificationDate(), date(2025, 1, 1));
}

TEST_F(BundledManifestRepositoryTest, ASetWithoutDatesHasNoModificationDate) {
    write("a.plist", withEntries("com.example.a", {}));
    BundledManifestRepository repository(m_folder.path());
    EXPECT_FALSE(repository.mostRecentModificationDate());
    EXPECT_FALSE(repository.mostRecentModificationDate());
    EXPECT_FALSE(BundledManifestRepository(m_folder.filePath("nothing-here")).mostRecentModificationDate());
}
