#include "StandardizationFixtures.h"

#include "supply/ModificationIndexItem.h"
#include "supply/OriginalsFolderRepository.h"
#include "supply/StandardizationPipeline.h"
#include "supply/StoreFile.h"

#include <QDateTime>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace quorlin;
using Status = UpdateResultsItem::UpdateStatuses;

namespace {

const QString kDomainKey = QStringLiteral("pfm_domain");

// A whole second, so that the index (which keeps whole seconds) holds it exactly.
const QDateTime kOriginalTime = QDateTime(QDate(2024, 3, 1), QTime(12, 0, 0), Qt::UTC);

plist::Dictionary manifest(const QString& domain, const QString& title = QStringLiteral("Test Payload")) {
    return test::manifestTree(domain, {test::keyTree(QStringLiteral("Enabled"), QStringLiteral("boolean"))},
                              {{QStringLiteral("pfm_title"), title}});
}

StandardizationSettings settings(const QString& version = QStringLiteral("2.0.0")) {
    StandardizationSettings settings;
    settings.hidePayloadTopLevelKeys = true;
    settings.sortOrder = {QString(), QStringLiteral("com.example.first")};
    settings.supportVersion = version;
    return settings;
}

class UpdatingManifestRepositoryTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(m_folder.isValid()); }

    QString original(const QString& relative) const { return m_folder.filePath("originals/" + relative); }
    QString store(const QString& relative = {}) const {
        return relative.isEmpty() ? m_folder.filePath("store") : m_folder.filePath("store/" + relative);
    }
    QString standardized(const QString& name) const { return store("standardized/" + name); }

    void writeOriginal(const QString& relative, const plist::Dictionary& tree,
                       const QDateTime& time = kOriginalTime) {
        ASSERT_TRUE(test::writeManifest(original(relative), tree));
        setTime(relative, time);
    }
    void setTime(const QString& relative, const QDateTime& time) {
        QFile file(original(relative));
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(file.setFileTime(time, QFileDevice::FileModificationTime));
    }

    std::unique_ptr<OriginalsFolderRepository> open(const StandardizationSettings& with = settings()) {
        return OriginalsFolderRepository::make(store(), m_folder.filePath("originals"), with);
    }

    QStringList standardizedNames() const {
        return QDir(store("standardized")).entryList({"*.plist"}, QDir::Files, QDir::Name);
    }

    static QStringList resultDomains(const UpdatingManifestRepository& repository, Status status) {
        QStringList domains;
        for (const UpdateResultsItem& item : repository.status().lastResults()) {
            if (item.status == status)
                domains << item.domain;
        }
        return domains;
    }

    QTemporaryDir m_folder;
};

} // namespace

TEST_F(UpdatingManifestRepositoryTest, FirstOpeningStandardizesEveryOriginalAndReadsTheResult) {
    writeOriginal("first.plist", manifest("com.example.first"));
    writeOriginal("nested/second.plist", manifest("com.example.second"));
    const auto repository = open();
    ASSERT_TRUE(repository);

    EXPECT_EQ(standardizedNames(), QStringList({"com.example.first.plist", "com.example.second.plist"}));
    EXPECT_EQ(repository->standardizedManifests().size(), 2);
    ASSERT_TRUE(repository->manifest("com.example.first"));
    EXPECT_EQ(repository->manifest("com.example.first")->integer("pfm_quorlin_sort_priority"), 1)
        << "the settings reach the finishing step";
    EXPECT_EQ(resultDomains(*repository, Status::updated),
              QStringList({"com.example.first", "com.example.second"}));
    EXPECT_EQ(repository->loadModificationIndex().size(), 2);
    EXPECT_TRUE(QFile::exists(repository->standardizationSettingsPlistPath()));
}

TEST_F(UpdatingManifestRepositoryTest, ADateWithinOneSecondIsNoChangeAndBeyondItIs) {
    writeOriginal("first.plist", manifest("com.example.first"));
    const auto repository = open();
    ASSERT_TRUE(repository);

    setTime("first.plist", kOriginalTime.addMSecs(900));
    EXPECT_TRUE(repository->processOriginals().isEmpty());
    setTime("first.plist", kOriginalTime.addMSecs(-900));
    EXPECT_TRUE(repository->processOriginals().isEmpty());

    setTime("first.plist", kOriginalTime.addMSecs(1100));
    EXPECT_EQ(repository->processOriginals(), QStringList({standardized("com.example.first.plist")}));
    // The index now holds the new date, so the same date is no change any more.
    EXPECT_TRUE(repository->processOriginals().isEmpty());
}

TEST_F(UpdatingManifestRepositoryTest,
       AnUnchangedStoreStandardizesNothingAndTouchingOneOriginalRedoesOnlyItsDomain) {
    writeOriginal("first.plist", manifest("com.example.first"));
    writeOriginal("second.plist", manifest("com.example.second"));
    ASSERT_TRUE(open());
    const QDateTime secondWritten = QFileInfo(standardized("com.example.second.plist")).lastModified();

    const auto again = open();
    ASSERT_TRUE(again);
    EXPECT_TRUE(again->status().lastResults().isEmpty()) << "a new object over the same store";
    EXPECT_EQ(again->standardizedManifests().size(), 2);

    writeOriginal("first.plist", manifest("com.example.first", "Changed"), kOriginalTime.addSecs(60));
    EXPECT_EQ(again->processOriginals(), QStringList({standardized("com.example.first.plist")}));
    EXPECT_EQ(resultDomains(*again, Status::updated), QStringList({"com.example.first"}));
    EXPECT_EQ(QFileInfo(standardized("com.example.second.plist")).lastModified(), secondWritten);
}

TEST_F(UpdatingManifestRepositoryTest, ChangedSettingsStandardizeEverythingExactlyOnce) {
    writeOriginal("first.plist", manifest("com.example.first"));
    writeOriginal("second.plist", manifest("com.example.second"));
    ASSERT_TRUE(open(settings("2.0.0")));

    const auto newer = open(settings("2.1.0"));
    ASSERT_TRUE(newer);
    EXPECT_EQ(resultDomains(*newer, Status::updated),
              QStringList({"com.example.first", "com.example.second"}));
    const auto stored = StoreFile::read(newer->standardizationSettingsPlistPath());
    ASSERT_TRUE(stored);
    EXPECT_EQ(StandardizationSettings::decoded(*stored), settings("2.1.0"));
    EXPECT_TRUE(newer->processOriginals().isEmpty());
    EXPECT_TRUE(open(settings("2.1.0"))->status().lastResults().isEmpty());
}

TEST_F(UpdatingManifestRepositoryTest, UnreadableOrMissingSettingsCountAsChanged) {
    writeOriginal("first.plist", manifest("com.example.first"));
    ASSERT_TRUE(open());
    ASSERT_TRUE(test::writeBytes(store("standardization-settings.plist"), "not a property list"));
    EXPECT_EQ(resultDomains(*open(), Status::updated), QStringList({"com.example.first"}));

    // Without settings on either side nothing differs; settings against none do.
    ASSERT_TRUE(QFile::remove(store("standardization-settings.plist")));
    const auto withoutSettings = OriginalsFolderRepository::make(store(), m_folder.filePath("originals"), {});
    EXPECT_TRUE(withoutSettings->status().lastResults().isEmpty());
    EXPECT_EQ(resultDomains(*open(), Status::updated), QStringList({"com.example.first"}));
}

TEST_F(UpdatingManifestRepositoryTest, DeletingAStandardizedFileByHandRestoresIt) {
    writeOriginal("first.plist", manifest("com.example.first"));
    const auto repository = open();
    ASSERT_TRUE(QFile::remove(standardized("com.example.first.plist")));

    EXPECT_EQ(repository->processOriginals(), QStringList({standardized("com.example.first.plist")}));
    EXPECT_TRUE(QFile::exists(standardized("com.example.first.plist")));
    EXPECT_EQ(repository->loadModificationIndex().size(), 1);
}

TEST_F(UpdatingManifestRepositoryTest, ARemovedOriginalTakesItsFileAndIsReportedRemoved) {
    writeOriginal("first.plist", manifest("com.example.first"));
    writeOriginal("second.plist", manifest("com.example.second"));
    const auto repository = open();
    ASSERT_TRUE(QFile::remove(original("second.plist")));

    EXPECT_TRUE(repository->processOriginals().isEmpty());
    EXPECT_EQ(standardizedNames(), QStringList({"com.example.first.plist"}));
    EXPECT_EQ(resultDomains(*repository, Status::removed), QStringList({"com.example.second"}));
    EXPECT_EQ(resultDomains(*repository, Status::updated), QStringList({"com.example.first"}))
        << "the earlier result stays";
    EXPECT_EQ(repository->loadModificationIndex().size(), 1);
}

TEST_F(UpdatingManifestRepositoryTest, ResultsAccumulateAcrossRefreshesAndCarryTheNewestDates) {
    plist::Dictionary dated = manifest("com.example.first");
    const plist::Date lastModified =
        plist::Date::fromDateTime(QDateTime(QDate(2023, 5, 6), QTime(7, 8, 9), Qt::UTC));
    dated.insert(QStringLiteral("pfm_last_modified"), lastModified);
    writeOriginal("first.plist", dated);
    writeOriginal("second.plist", manifest("com.example.second"));
    const auto repository = open();
    int changes = 0;
    QObject::connect(&repository->status(), &UpdatingRepositoryStatus::lastResultsChanged,
                     [&] { ++changes; });

    EXPECT_TRUE(repository->processOriginals().isEmpty());
    EXPECT_EQ(changes, 0) << "a refresh with nothing to do publishes nothing";

    writeOriginal("second.plist", manifest("com.example.second", "Changed"), kOriginalTime.addSecs(60));
    repository->checkForUpdates();
    EXPECT_EQ(changes, 1) << "results are set once per refresh";
    const auto& results = repository->status().lastResults();
    ASSERT_TRUE(results.contains("com.example.first")) << "kept across a refresh that didn't touch it";
    EXPECT_EQ(results["com.example.first"].manifestModificationDate, lastModified);
    EXPECT_EQ(results["com.example.first"].fileModificationDate, plist::Date::fromDateTime(kOriginalTime));
    EXPECT_EQ(results["com.example.second"].fileModificationDate,
              plist::Date::fromDateTime(kOriginalTime.addSecs(60)));
    EXPECT_EQ(repository->manifest("com.example.second")->string("pfm_title"), "Changed")
        << "checkForUpdates reads what it wrote";
    EXPECT_FALSE(repository->status().isCheckingForUpdates());
}

TEST_F(UpdatingManifestRepositoryTest, TwoOriginalsOfOneDomainGiveOneFileAndTwoIndexItems) {
    writeOriginal("macos/payload.plist", manifest("com.example.shared", "Shared for macOS"));
    writeOriginal("ios/payload.plist", manifest("com.example.shared", "Shared for iOS"));
    ASSERT_TRUE(open());

    writeOriginal("macos/payload.plist", manifest("com.example.shared", "Shared for macOS"),
                  kOriginalTime.addSecs(60));
    const auto repository = open();
    EXPECT_EQ(repository->processOriginals(), QStringList()) << "done when opened";
    EXPECT_EQ(resultDomains(*repository, Status::updated), QStringList({"com.example.shared"}));
    EXPECT_EQ(standardizedNames(), QStringList({"com.example.shared.plist"}));
    const auto index = repository->loadModificationIndex();
    ASSERT_EQ(index.size(), 2);
    EXPECT_EQ(index[0].standardizedLocation, index[1].standardizedLocation);
    // Both were read: the later title by sort order wins the merge.
    EXPECT_EQ(repository->manifest("com.example.shared")->string("pfm_title"), "Shared for macOS");
}

TEST_F(UpdatingManifestRepositoryTest, AnOriginalWithoutADomainGivesNothingAndIsTriedAgainEachRefresh) {
    writeOriginal("first.plist", manifest("com.example.first"));
    plist::Dictionary withoutDomain = manifest("unused");
    withoutDomain.remove(kDomainKey);
    writeOriginal("nodomain.plist", withoutDomain);
    plist::Dictionary numberDomain = manifest("unused");
    numberDomain.insert(kDomainKey, 42);
    writeOriginal("numberdomain.plist", numberDomain);
    const auto repository = open();

    EXPECT_EQ(standardizedNames(), QStringList({"com.example.first.plist"}));
    const auto index = repository->loadModificationIndex();
    ASSERT_EQ(index.size(), 1);
    EXPECT_EQ(index.first().originalLocation, original("first.plist"));
    EXPECT_TRUE(repository->processOriginals().isEmpty());
}

TEST_F(UpdatingManifestRepositoryTest, ADotDomainIsWrittenAsAnAppleFileAndKeepsItsDomain) {
    writeOriginal("global.plist", manifest(".GlobalPreferences"));
    writeOriginal("general.plist", manifest(QString()));
    const auto repository = open();

    EXPECT_EQ(standardizedNames(), QStringList({"Configuration.plist", "com.apple.GlobalPreferences.plist"}));
    ASSERT_TRUE(repository->manifest(".GlobalPreferences"));
    EXPECT_TRUE(repository->manifest(QString()));
    EXPECT_EQ(resultDomains(*repository, Status::updated),
              QStringList({"Configuration", "com.apple.GlobalPreferences"}));
}

TEST_F(UpdatingManifestRepositoryTest, AnIndexPathEscapingItsFolderEmptiesTheWholeIndex) {
    writeOriginal("first.plist", manifest("com.example.first"));
    writeOriginal("second.plist", manifest("com.example.second"));
    const auto repository = open();
    ASSERT_EQ(repository->loadModificationIndex().size(), 2);

    const auto stored = StoreFile::read(repository->modificationIndexPath());
    plist::Array index = *stored->array();
    index[1].mutableDictionary()->insert("OriginalPath", "../../outside.plist");
    ASSERT_TRUE(StoreFile::write(repository->modificationIndexPath(), index));
    EXPECT_TRUE(repository->loadModificationIndex().isEmpty());
    // With no index every original counts as new.
    EXPECT_EQ(repository->processOriginals().size(), 2);
    EXPECT_EQ(repository->loadModificationIndex().size(), 2);
}

TEST_F(UpdatingManifestRepositoryTest, IndexItemsDecodeOnlyInsideTheirFoldersWithTheirOwnMessages) {
    writeOriginal("first.plist", manifest("com.example.first"));
    const auto repository = open();
    const plist::Date time = plist::Date::fromDateTime(kOriginalTime);
    const plist::Dictionary good{{"OriginalPath", "sub/first.plist"},
                                 {"StandardizedPath", "com.example.first.plist"},
                                 {"ModificationTime", time}};

    const auto decoded = ModificationIndexItem::decoded(good, repository.get());
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded->originalLocation, original("sub/first.plist"));
    EXPECT_EQ(decoded->encoded(*repository), good) << "stored relative, as read";

    EXPECT_EQ(ModificationIndexItem::decoded(good, nullptr).error().decodingError,
              "No updating manifest repository available for decoding ModificationIndexItem");
    plist::Dictionary escaping = good;
    escaping.insert("OriginalPath", "../first.plist");
    EXPECT_EQ(
        ModificationIndexItem::decoded(escaping, repository.get()).error().decodingError,
        "Could not form a valid original location URL for decoding ModificationIndexItem ../first.plist");
    escaping = good;
    escaping.insert("StandardizedPath", "/etc/passwd");
    EXPECT_EQ(
        ModificationIndexItem::decoded(escaping, repository.get()).error().decodingError,
        "Could not form a valid standardized location URL for decoding ModificationIndexItem /etc/passwd");
    plist::Dictionary untimed = good;
    untimed.remove("ModificationTime");
    EXPECT_FALSE(ModificationIndexItem::decoded(untimed, repository.get()));
}

TEST_F(UpdatingManifestRepositoryTest, HostileOriginalsGetNoFileAndNothingLeavesTheStore) {
    writeOriginal("first.plist", manifest("com.example.first"));
    writeOriginal("escape.plist", manifest("com.example/../../../escaped"));
    writeOriginal("slash.plist", manifest("com.example/nested"));
    ASSERT_TRUE(test::writeBytes(original("garbage.plist"), "<?xml version=\"1.0\"?><plist><dict><key>"));
    ASSERT_TRUE(test::writeBytes(original("array.plist"), "<plist><array/></plist>"));
    const auto repository = open();
    ASSERT_TRUE(repository);

    EXPECT_EQ(standardizedNames(), QStringList({"com.example.first.plist"}));
    EXPECT_FALSE(QFile::exists(m_folder.filePath("escaped.plist")));
    EXPECT_FALSE(QFile::exists(store("escaped.plist")));
    EXPECT_EQ(repository->loadModificationIndex().size(), 1);
}

TEST_F(UpdatingManifestRepositoryTest, DeletesOnlyInsideTheStore) {
    writeOriginal("first.plist", manifest("com.example.first"));
    const auto repository = open();
    repository->deleteFiles({original("first.plist"), store("../originals/first.plist"),
                             standardized("com.example.first.plist")});
    EXPECT_TRUE(QFile::exists(original("first.plist")));
    EXPECT_FALSE(QFile::exists(standardized("com.example.first.plist")));
}

TEST_F(UpdatingManifestRepositoryTest, RelativePathsClimbOutOfTheBaseWithDoubleDots) {
    EXPECT_EQ(UpdatingManifestRepository::relativePath("/a/b/c", "/a/b/c/d/e.plist"), "d/e.plist");
    EXPECT_EQ(UpdatingManifestRepository::relativePath("/a/b/c", "/a/x/e.plist"), "../../x/e.plist");
    EXPECT_EQ(UpdatingManifestRepository::relativePath("/a/b/./c/", "/a/b/c/../e.plist"), "../e.plist");
}

TEST_F(UpdatingManifestRepositoryTest, AStoreThatCannotBeMadeGivesNoRepository) {
    ASSERT_TRUE(test::writeBytes(m_folder.filePath("blocked"), "a file where the store would go"));
    EXPECT_FALSE(OriginalsFolderRepository::make(m_folder.filePath("blocked/store"),
                                                 m_folder.filePath("originals"), settings()));
}

TEST(StandardizationSettingsTest, SettingsRoundTripAndWrongClassesDoNotDecode) {
    StandardizationSettings full = settings();
    full.iconSearchDirectories = QStringList{"/icons"};
    full.supportSearchDirectory = "/support";
    EXPECT_EQ(StandardizationSettings::decoded(full.encoded()), full);
    EXPECT_EQ(StandardizationSettings::decoded(StandardizationSettings().encoded()),
              StandardizationSettings());

    plist::Dictionary wrong = full.encoded();
    wrong.insert("SortOrder", plist::Array{1, 2});
    EXPECT_FALSE(StandardizationSettings::decoded(wrong));
    wrong = full.encoded();
    wrong.remove("HidePayloadTopLevelKeys");
    EXPECT_FALSE(StandardizationSettings::decoded(wrong));
    EXPECT_FALSE(StandardizationSettings::decoded(plist::Value(plist::Array{})));
}

TEST(UpdateResultsItemTest, StatusesAreStoredAsStringsAndOthersDoNotDecode) {
    const UpdateResultsItem removed{Status::removed, "com.example.gone", std::nullopt, plist::Date{5}};
    EXPECT_EQ(removed.encoded().string("Status"), "removed");
    EXPECT_EQ(UpdateResultsItem::decoded(removed.encoded()).value(), removed);
    plist::Dictionary unknown = removed.encoded();
    unknown.insert("Status", "renamed");
    EXPECT_EQ(UpdateResultsItem::decoded(unknown).error().message, "Could not decode a valid status value");
}

TEST_F(UpdatingManifestRepositoryTest, TheProjectLayoutReadsOnlyItsManifestsFolderAndGivesCategories) {
    writeOriginal("Manifests/ManifestsApple/system.plist", manifest("com.example.system"));
    plist::Dictionary ownCategory = manifest("com.example.own");
    ownCategory.insert("pfm_quorlin_category", "user");
    writeOriginal("Manifests/ManifestsApple/own.plist", ownCategory);
    writeOriginal("Manifests/ManagedPreferencesApple/app.plist", manifest("com.example.app"));
    writeOriginal("Manifests/Elsewhere/other.plist", manifest("com.example.other"));
    writeOriginal("Templates/outside.plist", manifest("com.example.outside"));
    const auto repository = open();

    EXPECT_TRUE(repository->isProfileManifestsRepository());
    EXPECT_EQ(repository->manifestFiles().size(), 4);
    EXPECT_FALSE(repository->manifest("com.example.outside"));
    EXPECT_EQ(repository->manifest("com.example.system")->string("pfm_quorlin_category"), "system");
    EXPECT_EQ(repository->manifest("com.example.own")->string("pfm_quorlin_category"), "user")
        << "a manifest's own category stays in any folder";
    EXPECT_EQ(repository->manifest("com.example.app")->string("pfm_quorlin_category"), "application");
    EXPECT_FALSE(repository->manifest("com.example.other")->contains("pfm_quorlin_category"));
}

TEST(StandardizationPipelineTest, OriginalsSortByTitleThenFileNameThenPath) {
    const auto original = [](const QString& path, std::optional<QString> title) {
        plist::Dictionary tree;
        if (title)
            tree.insert("pfm_title", *title);
        return StandardizationPipeline::Original{path, tree};
    };
    const auto isOrderedBefore = StandardizationPipeline::isOrderedBefore;
    EXPECT_TRUE(isOrderedBefore(original("/z/b.plist", "Alpha"), original("/a/a.plist", "Beta")));
    // A title in only one of the two can't decide: the file names do.
    EXPECT_TRUE(isOrderedBefore(original("/z/a.plist", "Zulu"), original("/a/b.plist", std::nullopt)));
    EXPECT_TRUE(isOrderedBefore(original("/z/a.plist", "Same"), original("/a/b.plist", "Same")));
    EXPECT_TRUE(isOrderedBefore(original("/a/same.plist", "Same"), original("/b/same.plist", "Same")));
    EXPECT_FALSE(isOrderedBefore(original("/b/same.plist", "Same"), original("/a/same.plist", "Same")));
}
