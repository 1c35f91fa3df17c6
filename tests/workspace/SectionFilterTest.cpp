#include "workspace/SectionFilter.h"
#include "WorkspaceTestSupport.h"
#include "plist/DefaultsKey.h"
#include "workspace/EditHistory.h"
#include "workspace/SectionArrayController.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>

namespace quorlin {
namespace {

using namespace test;

const QString bundledFolder = QStringLiteral(QUORLIN_BINARY_DIR "/share/quorlin-profile-editor/Manifests");

// A window's side-bar over the bundled manifests and a new profile: its
// list, its filter and the settings the filter remembers its choices in.
class SectionFilterTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_home.isValid());
        m_domains = domainsInFolder(bundledFolder);
        ASSERT_GE(m_domains.size(), 35) << "the bundled manifests are missing";
        m_profile = Profile::makeNewProfile(m_domains, makeTestEnvironment());
        m_collection = std::make_unique<PFMSectionCollection>(m_domains);
        for (PFMSection* section : m_collection->sectionPointers()) {
            section->setKeyValueWriter(m_history.keyValueWriter());
            section->bind(m_profile);
        }
        m_list.setContent(m_collection->sectionPointers());
        m_defaults = std::make_unique<UserDefaults>(defaultsPath());
    }

    QString defaultsPath() const { return m_home.filePath(QStringLiteral("defaults.plist")); }

    std::unique_ptr<SectionFilter> makeFilter() {
        return std::make_unique<SectionFilter>(m_list, *m_defaults);
    }

    // The first unconfigured section whose platforms are exactly these.
    PFMSection* sectionFor(const QStringList& platforms) const {
        for (PFMSection* section : m_collection->sectionPointers()) {
            if (section->sectionKind() == PFMSection::Kinds::domain && section->payloadsConfigured() == 0 &&
                section->supportedPlatformStrings() == platforms)
                return section;
        }
        return nullptr;
    }

    bool shown(const PFMSection* section) const {
        return m_list.arrangedObjects().contains(const_cast<PFMSection*>(section));
    }

    PFMSection* firstNonTitleRow() const {
        const auto& rows = m_list.arrangedObjects();
        const auto found = std::find_if(rows.begin(), rows.end(), [](const PFMSection* section) {
            return section->sectionKind() != PFMSection::Kinds::groupTitle;
        });
        return found == rows.end() ? nullptr : *found;
    }

    QTemporaryDir m_home;
    Profile::DomainList m_domains;
    Profile::Pointer m_profile;
    EditHistory m_history;
    std::unique_ptr<PFMSectionCollection> m_collection;
    SectionArrayController m_list;
    std::unique_ptr<UserDefaults> m_defaults;
};

TEST_F(SectionFilterTest, SearchFiltersFromTwoCharactersOnIgnoringCaseAndDiacritics) {
    auto filter = makeFilter();
    const auto everything = m_list.arrangedObjects();
    PFMSection* general = sectionTitled(*m_collection, m_domains.first()->title());
    ASSERT_TRUE(general);

    filter->setSearchText(QStringLiteral("x"));
    EXPECT_EQ(m_list.arrangedObjects(), everything) << "one character filters nothing";
    EXPECT_EQ(filter->highlightedTerm(), QStringLiteral("x"));

    PFMSection* cellular = sectionFor({QStringLiteral("ios")});
    ASSERT_TRUE(cellular);
    const PFMDomain& domain = *cellular->domains().first();
    // Each part of a section the search looks at, written the way a user might.
    const QString title = cellular->sectionProperties().title;
    // A key of its own, not one that every payload has.
    const auto ownKey =
        std::find_if(domain.allKeyNames().begin(), domain.allKeyNames().end(),
                     [](const QString& name) { return !name.startsWith(QStringLiteral("Payload")); });
    ASSERT_NE(ownKey, domain.allKeyNames().end());
    const QString keyName = *ownKey;
    const struct {
        const char* what;
        QString term;
    } searches[] = {
        {"title, upper case", title.toUpper()},
        {"title with an accent", title.left(1) + QStringLiteral("\u0301") + title.mid(1)},
        {"domain string", domain.domainString().mid(4)},
        {"key name, lower case", keyName.toLower()},
    };
    for (const auto& search : searches) {
        filter->setSearchText(search.term);
        EXPECT_TRUE(shown(cellular)) << search.what;
        EXPECT_LT(m_list.arrangedObjects().size(), everything.size()) << search.what;
        for (const PFMSection* section : m_list.arrangedObjects())
            EXPECT_TRUE(SectionFilter::sectionMatchesSearch(*section, search.term)) << search.what;
    }

    // Group titles go unless their own title matches.
    filter->setSearchText(QStringLiteral("available system domains"));
    ASSERT_EQ(m_list.arrangedObjects().size(), 1);
    EXPECT_EQ(m_list.arrangedObjects().first()->sectionKind(), PFMSection::Kinds::groupTitle);

    filter->setSearchText(QString());
    EXPECT_EQ(m_list.arrangedObjects(), everything);
    EXPECT_EQ(filter->highlightedTerm(), std::nullopt);
}

TEST_F(SectionFilterTest, PlatformFiltersNeedEveryPlatformUnlessTheSectionIsConfigured) {
    auto filter = makeFilter();
    PFMSection* iosOnly = sectionFor({QStringLiteral("ios")});
    PFMSection* iosAndTvos = sectionFor({QStringLiteral("ios"), QStringLiteral("tvos")});
    PFMSection* macOnly = sectionFor({QStringLiteral("macos")});
    ASSERT_TRUE(iosOnly && iosAndTvos && macOnly);

    filter->setFilteringForIOS(true);
    EXPECT_TRUE(shown(iosOnly));
    EXPECT_FALSE(shown(macOnly));
    filter->setFilteringForTvOS(true);
    EXPECT_FALSE(shown(iosOnly));
    EXPECT_TRUE(shown(iosAndTvos));
    EXPECT_EQ(filter->filteredForPlatforms(),
              (PFMSupportedPlatforms::Models{PFMSupportedPlatforms::Model::iOS,
                                             PFMSupportedPlatforms::Model::tvOS}));

    // A payload keeps a section in view whatever the platforms say.
    ASSERT_EQ(m_history.addPayload(*iosOnly, m_profile), PFMSection::AddPayloadResult::added);
    EXPECT_TRUE(shown(iosOnly));

    // Configured only: the group titles and everything without payloads go.
    filter->setFilteringForIOS(false);
    filter->setFilteringForTvOS(false);
    filter->setPredicateConfiguredOnlyActive(true);
    for (const PFMSection* section : m_list.arrangedObjects())
        EXPECT_GT(section->payloadsConfigured(), 0) << section->sectionProperties().title.toStdString();
    EXPECT_TRUE(shown(iosOnly));
    EXPECT_FALSE(shown(iosAndTvos));
}

TEST_F(SectionFilterTest, SelectionSurvivesFilteringAndComesBack) {
    auto filter = makeFilter();
    QList<std::pair<PFMSection*, PFMSection*>> changes;
    QObject::connect(filter.get(), &SectionFilter::selectedSectionChanged,
                     [&](PFMSection* now, PFMSection* left) { changes.append(std::make_pair(now, left)); });

    PFMSection* macOnly = sectionFor({QStringLiteral("macos")});
    ASSERT_TRUE(macOnly);
    ASSERT_TRUE(filter->selectSection(macOnly));
    EXPECT_EQ(filter->selectedSection(), macOnly);

    // Filtering it away selects the first row that is left that isn't a title.
    filter->setFilteringForIOS(true);
    ASSERT_FALSE(shown(macOnly));
    EXPECT_EQ(filter->selectedSection(), firstNonTitleRow());
    EXPECT_EQ(m_list.selectedObject(), filter->selectedSection());
    ASSERT_FALSE(changes.isEmpty());
    EXPECT_EQ(changes.last().second, macOnly) << "the window must hear which section was left";

    // Widening the filter brings the earlier section back.
    filter->setFilteringForIOS(false);
    EXPECT_EQ(filter->selectedSection(), macOnly);
    EXPECT_EQ(m_list.selectedObject(), macOnly);

    // So does clearing a search that hid it.
    PFMSection* iosOnly = sectionFor({QStringLiteral("ios")});
    ASSERT_TRUE(iosOnly);
    filter->setSearchText(iosOnly->domains().firstKey());
    ASSERT_FALSE(shown(macOnly));
    EXPECT_EQ(filter->selectedSection(), firstNonTitleRow());
    filter->setSearchText(QString());
    EXPECT_EQ(filter->selectedSection(), macOnly);

    // A section the user picks while filtered becomes the one to come back to.
    filter->setFilteringForIOS(true);
    ASSERT_TRUE(filter->selectSection(iosOnly));
    filter->setFilteringForIOS(false);
    EXPECT_EQ(filter->selectedSection(), iosOnly);

    // With only group titles left nothing is selected, and widening restores the last good one.
    ASSERT_TRUE(filter->selectSection(macOnly));
    changes.clear();
    filter->setSearchText(QStringLiteral("Available System Domains"));
    ASSERT_FALSE(m_list.arrangedObjects().isEmpty());
    EXPECT_EQ(firstNonTitleRow(), nullptr);
    EXPECT_EQ(filter->selectedSection(), nullptr);
    EXPECT_TRUE(m_list.selectionIndexes().isEmpty());
    EXPECT_EQ(filter->lastGoodSelectedSection(), macOnly);
    ASSERT_EQ(changes.size(), 1);
    EXPECT_EQ(changes.first(), std::make_pair(static_cast<PFMSection*>(nullptr), macOnly));
    filter->setSearchText(QString());
    EXPECT_EQ(filter->selectedSection(), macOnly);
}

TEST_F(SectionFilterTest, PlatformFiltersAreRememberedUnlessSuspended) {
    {
        auto filter = makeFilter();
        EXPECT_FALSE(filter->filteringForMacOS()) << "a missing default is off";
        filter->setFilteringForMacOS(true);
        filter->setFilteringForWatchOS(true);
        filter->setFilteringForWatchOS(false);
        filter->setSuspendFilteringSaveToDefaults(true);
        filter->setFilteringForTvOS(true);
        EXPECT_TRUE(filter->filteringForTvOS());
    }
    // The next window reads them from the file.
    UserDefaults reread(defaultsPath());
    EXPECT_EQ(reread.boolean(DefaultsKey::lastChoiceFilteringForMacOS), true);
    EXPECT_EQ(reread.boolean(DefaultsKey::lastChoiceFilteringForWatchOS), false);
    EXPECT_FALSE(reread.hasPersistentValue(DefaultsKey::lastChoiceFilteringForTvOS));
    EXPECT_FALSE(reread.hasPersistentValue(DefaultsKey::lastChoiceFilteringForIOS));

    m_defaults = std::make_unique<UserDefaults>(defaultsPath());
    auto next = makeFilter();
    EXPECT_TRUE(next->filteringForMacOS());
    EXPECT_FALSE(next->filteringForTvOS());
    EXPECT_FALSE(shown(sectionFor({QStringLiteral("ios")}))) << "the remembered filter applies at once";
    EXPECT_FALSE(next->predicateConfiguredOnlyActive());
}

} // namespace
} // namespace quorlin
