#include "EditorTestSupport.h"

#include "ui/ContentView.h"
#include "ui/FieldRowView.h"
#include "ui/PayloadFormView.h"
#include "ui/ProfileComparisonWindow.h"
#include "ui/SectionFormView.h"
#include "ui/WindowNoticePresenter.h"
#include "workspace/PFMSectionViewController.h"
#include "workspace/PayloadViewController.h"

#include <QAction>
#include <QMessageBox>
#include <QTreeWidget>

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using namespace test;
using ProfileComparisonWindowTest = EditorFixture;

// An edit against the saved file: listed under its payload, and choosing it
// brings its field into view in the document window.
TEST_F(ProfileComparisonWindowTest, ListsAnEditAgainstTheSavedFileAndShowsItsField) {
    DocumentWindow* window = open(copyProfile(QStringLiteral("dock.mobileconfig")));
    ASSERT_TRUE(window);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window));
    PFMSection* dock = sectionTitled(*window, QStringLiteral("Dock"));
    ASSERT_TRUE(dock);
    window->selectSection(dock);
    const auto key = dock->sectionViewController()->payloadControllers()[0]->payload()->keyAtPath("tilesize");
    ASSERT_TRUE(key);
    key->setValue(PreferenceKeyValue(plist::Value(64)));
    window->selectSection(sectionTitled(*window, QStringLiteral("General")));

    window->compareWithSavedAction()->trigger();
    auto* comparison = window->findChild<ProfileComparisonWindow*>();
    ASSERT_TRUE(comparison);
    ASSERT_EQ(comparison->differences().size(), 2);
    EXPECT_EQ(comparison->differences()[0].kind, ProfileDifference::Kind::payloadChanged);
    EXPECT_EQ(comparison->differences()[1].keyPath, "tilesize");
    EXPECT_EQ(comparison->differences()[1].newValue, plist::Value(64));
    QTreeWidget* list = comparison->differenceList();
    ASSERT_EQ(list->topLevelItemCount(), 1);
    ASSERT_EQ(list->topLevelItem(0)->childCount(), 1);
    EXPECT_TRUE(list->topLevelItem(0)->text(0).startsWith("Dock"));

    Q_EMIT list->itemActivated(list->topLevelItem(0)->child(0), 0);
    EXPECT_EQ(window->selectedSection(), dock);
    SectionFormView* form = window->contentView()->sectionFormView();
    ASSERT_TRUE(form && !form->payloadViews().isEmpty());
    FieldRowView* row = form->payloadViews().first()->rowForKey(QStringLiteral("tilesize"));
    ASSERT_TRUE(row && !row->instrumentWidgets().isEmpty());
    EXPECT_TRUE(QTest::qWaitFor([&] { return !row->visibleRegion().isEmpty(); }, 5000))
        << "scrolled into view";

    // A file compared with itself through "Compare With…" has nothing to list.
    window->setComparisonFileChooser([&] { return *window->document().filePath(); });
    key->setValue(PreferenceKeyValue(plist::Value(48)));
    window->compareWithAction()->trigger();
    const auto windows = window->findChildren<ProfileComparisonWindow*>();
    ASSERT_EQ(windows.size(), 2);
    EXPECT_TRUE(windows.last()->differences().isEmpty());

    // A file that holds no profile gets words, not a window.
    window->setComparisonFileChooser(
        [&] { return testDataPath(QStringLiteral("diff/manifests/apps.plist")); });
    window->compareWithAction()->trigger();
    auto* box = waitForWidget<QMessageBox>(WindowNoticePresenter::errorObjectName);
    ASSERT_TRUE(box);
    EXPECT_TRUE(box->informativeText().contains("apps.plist"));
    box->close();
    EXPECT_EQ(window->findChildren<ProfileComparisonWindow*>().size(), 2);
}

} // namespace
} // namespace quorlin
