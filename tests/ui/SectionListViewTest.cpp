#include "ui/SectionListView.h"
#include "plist/UserDefaults.h"
#include "support/DataManifests.h"
#include "ui/PlatformFilterButtons.h"
#include "ui/SectionListModel.h"
#include "ui/SectionSearchField.h"
#include "workspace/EditHistory.h"
#include "workspace/PFMSectionViewController.h"
#include "workspace/SectionFilter.h"
#include "workspace/WorkspaceTestSupport.h"

#include <QAbstractButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using namespace test;

// A side-bar on its own: sections of the general domain, a relay domain
// whose fields can be made invalid, and two more that stay unconfigured.
class SectionListViewTest : public ::testing::Test {
protected:
    void SetUp() override {
        m_relay = dataDomain(QStringLiteral("ui/relay.plist"));
        ASSERT_TRUE(m_relay);
        m_domains = fixtureDomains();
        m_domains.append(m_relay);
        m_profile = Profile::makeNewProfile(m_domains, makeTestEnvironment());
        m_collection = std::make_unique<PFMSectionCollection>(m_domains);
        for (PFMSection* section : m_collection->sectionPointers()) {
            section->setKeyValueWriter(m_history.keyValueWriter());
            section->bind(m_profile);
        }
        m_list.setContent(m_collection->sectionPointers());
        m_view = std::make_unique<SectionListView>(m_list);
        m_view->resize(280, 600);
        m_view->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(m_view.get()));
    }

    PFMSection& relay() const { return *sectionTitled(*m_collection, QStringLiteral("Relay")); }
    SectionListModel& model() const { return m_view->sectionModel(); }

    int rowOfGroupTitle(const QString& title) const {
        for (int row = 0; row < model().rowCount(); ++row) {
            if (model().index(row).data(SectionListModel::IsGroupTitleRole).toBool() &&
                model().index(row).data().toString() == title)
                return row;
        }
        return -1;
    }

    void click(int row, Qt::MouseButton button = Qt::LeftButton) {
        const QRect rect = m_view->visualRect(model().index(row));
        ASSERT_TRUE(rect.isValid()) << "row " << row << " isn't laid out";
        QTest::mouseClick(m_view->viewport(), button, {}, rect.center());
    }

    std::shared_ptr<const PFMDomain> m_relay;
    Profile::DomainList m_domains;
    Profile::Pointer m_profile;
    EditHistory m_history;
    std::unique_ptr<PFMSectionCollection> m_collection;
    SectionArrayController m_list;
    std::unique_ptr<SectionListView> m_view;
};

TEST_F(SectionListViewTest, RowsFollowTheListAndSelectionGoesBothWays) {
    const auto rowsMatchTheList = [&] {
        ASSERT_EQ(model().rowCount(), m_list.arrangedObjects().size());
        for (int row = 0; row < model().rowCount(); ++row)
            EXPECT_EQ(model().sectionAt(row), m_list.arrangedObjects()[row]) << "row " << row;
    };
    rowsMatchTheList();

    // A click selects in the list; the list's selection shows in the view.
    const int relayRow = model().rowOf(&relay());
    click(relayRow);
    EXPECT_EQ(m_list.selectedObject(), &relay());
    EXPECT_EQ(m_view->currentIndex().row(), relayRow);

    // Its first payload moves the row up into the configured block; the
    // selection moves with it, and the second line tells the new count.
    ASSERT_EQ(m_history.addPayload(relay(), m_profile), PFMSection::AddPayloadResult::added);
    rowsMatchTheList();
    const int movedRow = model().rowOf(&relay());
    EXPECT_LT(movedRow, relayRow);
    EXPECT_EQ(m_list.selectedObject(), &relay());
    ASSERT_EQ(m_view->selectionModel()->selectedIndexes().size(), 1);
    EXPECT_EQ(m_view->selectionModel()->selectedIndexes().first().row(), movedRow);
    EXPECT_EQ(model().index(movedRow).data(SectionListModel::DescriptionRole).toString(),
              relay().payloadsConfiguredString());

    // Selecting in the list shows in the view.
    const int generalRow = model().rowOf(sectionTitled(*m_collection, m_domains.first()->title()));
    m_list.setSelectionIndexes({generalRow});
    EXPECT_EQ(m_view->currentIndex().row(), generalRow);
    EXPECT_TRUE(m_view->selectionModel()->isRowSelected(generalRow, {}));

    // A filter narrows the rows.
    m_list.setFilterPredicate([](const PFMSection& section) { return section.payloadsConfigured() > 0; });
    rowsMatchTheList();
    EXPECT_EQ(model().rowCount(), 2);
}

TEST_F(SectionListViewTest, KeepsTheSelectedRowInViewWhenItMoves) {
    m_view->resize(280, 110);
    const auto selectedRowIsVisible = [&] {
        // The move is scrolled to after the current pass.
        QCoreApplication::processEvents();
        const QRect rect = m_view->visualRect(model().index(model().rowOf(&relay())));
        return m_view->viewport()->rect().contains(rect.center());
    };
    m_list.setSelectionIndexes({model().rowOf(&relay())});
    EXPECT_TRUE(selectedRowIsVisible());
    ASSERT_EQ(m_history.addPayload(relay(), m_profile), PFMSection::AddPayloadResult::added);
    EXPECT_TRUE(selectedRowIsVisible()) << "moved up into the configured block";
    m_history.undoStack().undo();
    ASSERT_EQ(relay().payloadsConfigured(), 0);
    EXPECT_EQ(m_list.selectedObject(), &relay());
    EXPECT_TRUE(selectedRowIsVisible()) << "moved back down to its group";
}

TEST_F(SectionListViewTest, GroupTitlesAreNeitherClickedNorSteppedOnto) {
    const int systemTitle = rowOfGroupTitle(QStringLiteral("Available System Domains"));
    ASSERT_GT(systemTitle, 0);
    EXPECT_FALSE(model().flags(model().index(systemTitle)) & Qt::ItemIsSelectable);
    const int firstSystemRow = systemTitle + 1;
    ASSERT_FALSE(model().index(firstSystemRow).data(SectionListModel::IsGroupTitleRole).toBool());

    click(firstSystemRow);
    PFMSection* chosen = m_list.selectedObject();
    ASSERT_EQ(chosen, model().sectionAt(firstSystemRow));
    click(systemTitle);
    EXPECT_EQ(m_list.selectedObject(), chosen) << "a click on a title changes nothing";

    // Up from the first system section passes over its title to the configured row above.
    m_view->setFocus();
    QTest::keyClick(m_view.get(), Qt::Key_Up);
    ASSERT_EQ(model().index(systemTitle - 1).data(SectionListModel::IsGroupTitleRole).toBool(), false);
    EXPECT_EQ(m_list.selectedObject(), model().sectionAt(systemTitle - 1));
    // Home would land on "Configured Domains"; the cursor goes to the first section instead.
    QTest::keyClick(m_view.get(), Qt::Key_Home);
    EXPECT_EQ(m_list.selectedObject(), model().sectionAt(1));
    EXPECT_EQ(m_list.selectionIndexes(), QList<int>{1});
}

TEST_F(SectionListViewTest, BadgeFollowsTheSectionsErrors) {
    ASSERT_EQ(m_history.addPayload(relay(), m_profile), PFMSection::AddPayloadResult::added);
    const auto badge = [&] {
        return model().index(model().rowOf(&relay())).data(SectionListModel::BadgeRole);
    };
    QSignalSpy changes(&model(), &QAbstractItemModel::dataChanged);
    // The missing required server name is the one fault.
    EXPECT_EQ(badge(), QVariant(1));
    const auto& form = *relay().sectionViewController()->payloadControllers().front();
    m_history.setValue(form.payload()->keyAtPath(QStringLiteral("Port")), plist::Value(500));
    EXPECT_EQ(badge(), QVariant(2));
    EXPECT_FALSE(changes.isEmpty()) << "views must hear of the new count";
    m_history.setValue(form.payload()->keyAtPath(QStringLiteral("ServerName")),
                       plist::Value(QStringLiteral("x")));
    m_history.setValue(form.payload()->keyAtPath(QStringLiteral("Port")), plist::Value(50));
    EXPECT_FALSE(badge().isValid()) << "no badge at 0";
}

TEST_F(SectionListViewTest, RightClickSetsTheClickedRowAndAsksForAMenu) {
    click(model().rowOf(&relay()));
    const int otherRow = model().rowOf(sectionTitled(*m_collection, m_domains.first()->title()));
    QSignalSpy requests(m_view.get(), &SectionListView::contextMenuRequested);
    const QRect rect = m_view->visualRect(model().index(otherRow));
    QContextMenuEvent event(QContextMenuEvent::Mouse, rect.center(),
                            m_view->viewport()->mapToGlobal(rect.center()));
    QCoreApplication::sendEvent(m_view->viewport(), &event);
    ASSERT_EQ(requests.size(), 1);
    EXPECT_EQ(requests.first().first().value<PFMSection*>(), model().sectionAt(otherRow));
    // The menu acts on the row clicked, not on the selection.
    EXPECT_EQ(m_list.selectedOrClickedObject(), model().sectionAt(otherRow));
    EXPECT_EQ(m_list.selectedObject(), &relay());
}

TEST(SidebarControls, PlatformButtonsAndSearchFieldDriveTheFilter) {
    QTemporaryDir home;
    UserDefaults defaults(home.filePath(QStringLiteral("defaults.plist")));
    defaults.set(QStringLiteral("lastChoiceFilteringForTvOS"), true);
    SectionArrayController list;
    SectionFilter filter(list, defaults);
    PlatformFilterButtons buttons(filter);
    SectionSearchField search(filter);

    const QStringList order{QStringLiteral("iOS"), QStringLiteral("macOS"), QStringLiteral("tvOS"),
                            QStringLiteral("watchOS")};
    for (int index = 0; index < order.size(); ++index) {
        EXPECT_EQ(buttons.segment(index)->text(), order[index]);
        EXPECT_FALSE(buttons.segment(index)->accessibleName().isEmpty());
        EXPECT_FALSE(buttons.segment(index)->toolTip().isEmpty());
    }
    EXPECT_TRUE(buttons.segment(2)->isChecked()) << "the remembered choice shows";

    QTest::mouseClick(buttons.segment(0), Qt::LeftButton);
    EXPECT_TRUE(filter.filteringForIOS());
    filter.setFilteringForWatchOS(true);
    EXPECT_TRUE(buttons.segment(3)->isChecked());
    filter.setFilteringForTvOS(false);
    EXPECT_FALSE(buttons.segment(2)->isChecked());

    EXPECT_EQ(search.placeholderText(), QStringLiteral("Search Preferences"));
    QSignalSpy terms(&filter, &SectionFilter::highlightedTermChanged);
    QTest::keyClicks(&search, QStringLiteral("wifi"));
    EXPECT_EQ(filter.searchText(), QStringLiteral("wifi"));
    EXPECT_EQ(filter.highlightedTerm(), QStringLiteral("wifi"));
    EXPECT_EQ(terms.size(), 4);
    QTest::keyClick(&search, Qt::Key_Escape);
    EXPECT_TRUE(search.text().isEmpty());
    EXPECT_TRUE(filter.searchText().isEmpty());
    EXPECT_EQ(filter.highlightedTerm(), std::nullopt);
}

} // namespace
} // namespace quorlin
