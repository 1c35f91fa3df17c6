#include "EditorTestSupport.h"

#include "ui/ContentView.h"
#include "ui/FieldRowView.h"
#include "ui/IssuesPanel.h"
#include "ui/PayloadFormView.h"
#include "ui/SectionFormView.h"
#include "ui/SectionItemDelegate.h"
#include "ui/SectionListModel.h"
#include "ui/SectionListView.h"
#include "workspace/PFMSectionViewController.h"
#include "workspace/PayloadViewController.h"

#include <QAccessible>
#include <QAction>
#include <QLabel>
#include <QScrollArea>
#include <QTreeWidget>

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using namespace test;

// The dock profile with two sizes beyond their range: two errors, one section.
class ErrorNavigation : public EditorFixture {
protected:
    void SetUp() override {
        EditorFixture::SetUp();
        window = open(copyProfile(QStringLiteral("dock.mobileconfig")));
        ASSERT_TRUE(window);
        window->show();
        window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window));
        dock = sectionTitled(*window, QStringLiteral("Dock"));
        ASSERT_TRUE(dock && dock->sectionViewController());
        for (const char* name : {"tilesize", "largesize"})
            window->history().setValue(key(QString::fromLatin1(name)), plist::Value(500));
        other = window->sections().arrangedObjects().at(
            window->sections().arrangedObjects().first() == dock ? 1 : 0);
        if (other->sectionKind() == PFMSection::Kinds::groupTitle)
            other = window->sections().arrangedObjects().at(1);
    }

    PreferenceKey::Pointer key(const QString& name) const {
        return dock->sectionViewController()->payloadControllers().front()->payload()->keyAtPath(name);
    }
    FieldRowView* row(const QString& name) const {
        SectionFormView* form = window->contentView()->sectionFormView();
        return form ? form->payloadViews().first()->rowForKey(name) : nullptr;
    }
    // The field has the focus and the form shows its row.
    bool atField(const QString& name) const {
        FieldRowView* found = row(name);
        if (window->selectedSection() != dock || !found || found->instrumentWidgets().isEmpty())
            return false;
        QWidget* viewport = window->contentView()->sectionFormView()->scrollArea()->viewport();
        const QRect inViewport(found->mapTo(viewport, QPoint()), found->size());
        return found->instrumentWidgets().first()->hasFocus() && viewport->rect().contains(inViewport);
    }
    // The navigation ends on the next pass of the event loop.
    bool reaches(const QString& name) const {
        return QTest::qWaitFor([&] { return atField(name); }, 2000);
    }
    // The panel follows on the next pass too.
    bool listsIssues(int count) const {
        return QTest::qWaitFor([&] { return window->issuesPanel()->list()->topLevelItemCount() == count; },
                               2000);
    }
    int badgeSum() const {
        int sum = 0;
        for (PFMSection* section : window->sections().content())
            sum += section->errorCount();
        return sum;
    }

    DocumentWindow* window = nullptr;
    PFMSection* dock = nullptr;
    PFMSection* other = nullptr;
};

TEST_F(ErrorNavigation, NextAndPreviousFocusEachErrorInTurnWrappingRound) {
    window->selectSection(other);
    const QString tile = QStringLiteral("tilesize");
    const QString large = QStringLiteral("largesize");
    ASSERT_EQ(badgeSum(), 2);
    // Menu items with shortcuts, under View.
    EXPECT_EQ(window->nextErrorAction()->shortcut(), QKeySequence(Qt::Key_F8));
    EXPECT_FALSE(window->previousErrorAction()->shortcut().isEmpty());

    QTest::keyClick(window, Qt::Key_F8);
    EXPECT_TRUE(reaches(tile));
    window->nextErrorAction()->trigger();
    EXPECT_TRUE(reaches(large));
    window->nextErrorAction()->trigger();
    EXPECT_TRUE(reaches(tile));
    window->previousErrorAction()->trigger();
    EXPECT_TRUE(reaches(large));

    // With nothing wrong, the commands stay where they are.
    window->history().setValue(key(tile), plist::Value(48));
    window->history().setValue(key(large), plist::Value(64));
    window->selectSection(other);
    window->nextErrorAction()->trigger();
    EXPECT_EQ(window->selectedSection(), other);
}

TEST_F(ErrorNavigation, TheIssuesPanelListsWhatTheBadgesCountAndLeadsToTheField) {
    IssuesPanel* panel = window->issuesPanel();
    ASSERT_TRUE(panel);
    EXPECT_FALSE(panel->isVisible());
    window->issuesPanel()->toggleViewAction()->trigger();
    ASSERT_TRUE(panel->isVisible());
    ASSERT_TRUE(listsIssues(2));
    EXPECT_EQ(panel->issues().size(), badgeSum());
    QTreeWidgetItem* second = panel->list()->topLevelItem(1);
    EXPECT_EQ(second->text(0), QStringLiteral("Dock"));
    EXPECT_FALSE(second->text(1).isEmpty());

    window->selectSection(other);
    const QRect rect = panel->list()->visualItemRect(second);
    QTest::mouseClick(panel->list()->viewport(), Qt::LeftButton, {}, rect.center());
    EXPECT_TRUE(reaches(QStringLiteral("largesize")));
    // The message is the row's own.
    EXPECT_EQ(second->text(2), row(QStringLiteral("largesize"))->errorLabel()->text());

    // An edit and its undo reach list and badges alike.
    window->history().setValue(key(QStringLiteral("tilesize")), plist::Value(64));
    EXPECT_TRUE(listsIssues(1));
    EXPECT_EQ(badgeSum(), 1);
    window->history().undoStack().undo();
    EXPECT_TRUE(listsIssues(2));
    EXPECT_EQ(panel->issues().size(), badgeSum());
}

// The panel is reached and used from the keyboard, and a screen reader names it.
TEST_F(ErrorNavigation, TheIssuesPanelWorksFromTheKeyboardAndIsNamed) {
    QAction* toggle = window->issuesPanel()->toggleViewAction();
    EXPECT_FALSE(toggle->shortcut().isEmpty());
    QTest::keySequence(window, toggle->shortcut());
    ASSERT_TRUE(listsIssues(2));
    QTreeWidget* list = window->issuesPanel()->list();
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(list);
    ASSERT_TRUE(accessible);
    EXPECT_EQ(accessible->text(QAccessible::Name), IssuesPanel::title());
    window->selectSection(other);
    list->setFocus();
    list->setCurrentItem(list->topLevelItem(1));
    QTest::keyClick(list, Qt::Key_Return);
    EXPECT_TRUE(reaches(QStringLiteral("largesize")));
}

TEST_F(ErrorNavigation, ClickingABadgeGoesToTheSectionsFirstError) {
    window->selectSection(other);
    SectionListView* list = window->sectionListView();
    const QModelIndex index =
        list->sectionModel().index(int(window->sections().arrangedObjects().indexOf(dock)));
    list->scrollTo(index);
    const QRect badge = SectionItemDelegate::badgeRect(list->visualRect(index), list->font(), 2);
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, badge.center());
    EXPECT_TRUE(reaches(QStringLiteral("tilesize")));
}

} // namespace
} // namespace quorlin
