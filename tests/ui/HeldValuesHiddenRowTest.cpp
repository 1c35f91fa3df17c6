// A value held by a key whose row a rule hides is listed above the rows,
// where its "Remove" is an edit the history undoes.

#include "EditorTestSupport.h"

#include "ui/ContentView.h"
#include "ui/FieldRowView.h"
#include "ui/PayloadFormView.h"
#include "ui/SectionFormView.h"
#include "workspace/SectionArrayController.h"

#include <QAction>
#include <QLabel>
#include <QPushButton>

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using namespace test;

class HeldValuesHiddenRowTest : public EditorFixture {};

TEST_F(HeldValuesHiddenRowTest, TheFormListsItAndRemovingItIsUndoable) {
    DocumentWindow* window = openShown(QStringLiteral("dock-held.mobileconfig"));
    ASSERT_TRUE(window);
    PFMSection* dock = sectionTitled(*window, QStringLiteral("Dock"));
    ASSERT_TRUE(dock);
    window->selectSection(dock);
    const auto bytes = [&] { return profileBytes(*window->document().profile()); };
    const QByteArray opened = bytes();

    PayloadFormView* form = window->contentView()->sectionFormView()->payloadViews().first();
    const FieldRowView* hidden = form->rowForKey(QStringLiteral("largesize"));
    EXPECT_FALSE(hidden && hidden->isVisibleTo(form)) << "a rule hides the row";
    auto* notice = form->findChild<QLabel*>(QStringLiteral("heldValuesNotice"));
    ASSERT_TRUE(notice);
    EXPECT_TRUE(notice->isVisibleTo(form));
    EXPECT_TRUE(
        notice->text().startsWith(QStringLiteral("largesize: The manifest leaves this key out while")))
        << notice->text().toStdString();
    EXPECT_EQ(SectionArrayController::errorBadge(*dock), 2) << "counted once, not on the row and the list";

    auto* remove = notice->parentWidget()->findChild<QPushButton*>(QStringLiteral("removeHeldValuesButton"));
    ASSERT_TRUE(remove);
    QTest::mouseClick(remove, Qt::LeftButton);
    EXPECT_FALSE(bytes().contains("largesize"));
    EXPECT_FALSE(notice->isVisibleTo(form));
    EXPECT_EQ(SectionArrayController::errorBadge(*dock), 1);
    window->undoAction()->trigger();
    EXPECT_EQ(bytes(), opened);
    EXPECT_TRUE(notice->isVisibleTo(form));
    EXPECT_EQ(SectionArrayController::errorBadge(*dock), 2);
    window->closeApproved();
}

} // namespace
} // namespace quorlin
