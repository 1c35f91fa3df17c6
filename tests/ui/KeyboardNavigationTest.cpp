// The window from the keyboard alone: Tab walks a form from top to bottom,
// and typing in the side-bar selects the section whose title starts so.

#include "EditorTestSupport.h"

#include "ui/ContentView.h"
#include "ui/FieldRowView.h"
#include "ui/PayloadFormView.h"
#include "ui/SectionFormView.h"
#include "ui/SectionListView.h"

#include <QApplication>

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using namespace test;

class KeyboardNavigation : public EditorFixture {
protected:
    void SetUp() override {
        EditorFixture::SetUp();
        window = open(copyProfile(QStringLiteral("dock.mobileconfig")));
        ASSERT_TRUE(window);
        window->resize(1024, 700);
        window->show();
        window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window));
    }

    DocumentWindow* window = nullptr;
};

TEST_F(KeyboardNavigation, TabWalksTheFormFromTopToBottom) {
    window->selectSection(sectionTitled(*window, QStringLiteral("Dock")));
    // The form shows on the next pass of the event loop.
    QTest::qWait(0);
    PayloadFormView* form = window->contentView()->sectionFormView()->payloadViews().first();
    // From the side-bar, past the toolbar, into the form and down it.
    window->sectionListView()->setFocus(Qt::TabFocusReason);
    int rowsVisited = 0;
    int lastTop = -1;
    for (int step = 0; step < 60; ++step) {
        QWidget* focused = QApplication::focusWidget();
        ASSERT_TRUE(focused);
        FieldRowView* row = nullptr;
        for (QWidget* widget = focused; widget && !row; widget = widget->parentWidget())
            row = qobject_cast<FieldRowView*>(widget);
        const bool inForm = row && form->isAncestorOf(row);
        if (!inForm && rowsVisited > 0)
            break;
        if (inForm) {
            const int top = row->mapTo(form, QPoint()).y();
            EXPECT_GE(top, lastTop) << row->field().field()->name().toStdString();
            rowsVisited += top != lastTop;
            lastTop = top;
        }
        QTest::keyClick(focused, Qt::Key_Tab);
    }
    EXPECT_GE(rowsVisited, 5);
}

TEST_F(KeyboardNavigation, TypingInTheSideBarSelectsTheSectionByItsTitle) {
    SectionListView* list = window->sectionListView();
    list->setFocus();
    for (const QString& title : {QStringLiteral("Dock"), QStringLiteral("General")}) {
        QTest::keyClicks(list, title);
        EXPECT_EQ(window->selectedSection()->sectionProperties().title, title);
        // Past the pause that starts a new search.
        QTest::qWait(QApplication::keyboardInputInterval() + 50);
    }
}

} // namespace
} // namespace quorlin
