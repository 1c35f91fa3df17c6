// A profile that holds what the manifests don't allow, in the window: the
// rows and the badge say so, Remove and the window's command are edits the
// history undoes, and saving keeps what is left.

#include "EditorTestSupport.h"

#include "ui/ContentView.h"
#include "ui/FieldRowView.h"
#include "ui/PayloadFormView.h"
#include "ui/PayloadSelectorDialog.h"
#include "ui/SectionFormView.h"
#include "workspace/EditHistory.h"
#include "workspace/SectionArrayController.h"

#include <QAction>
#include <QLabel>
#include <QPushButton>
#include <QUndoStack>

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using namespace test;

class HeldValuesWindowTest : public EditorFixture {};

TEST_F(HeldValuesWindowTest, RowsShowHeldValuesAndRemovingThemIsUndoable) {
    DocumentWindow* window = openShown(QStringLiteral("dock-held.mobileconfig"));
    ASSERT_TRUE(window);
    PFMSection* dock = sectionTitled(*window, QStringLiteral("Dock"));
    ASSERT_TRUE(dock);
    window->selectSection(dock);
    EXPECT_EQ(SectionArrayController::errorBadge(*dock), 2)
        << "the wrong class and the value a rule leaves out";
    const auto bytes = [&] { return profileBytes(*window->document().profile()); };
    const QByteArray opened = bytes();
    ASSERT_TRUE(opened.contains("<string>big</string>") && opened.contains("largesize"));

    PayloadFormView* form = window->contentView()->sectionFormView()->payloadViews().first();
    FieldRowView* row = form->rowForKey(QStringLiteral("tilesize"));
    ASSERT_TRUE(row);
    EXPECT_TRUE(row->heldValuesLabel()->isVisibleTo(row));
    EXPECT_EQ(row->heldValuesLabel()->text(), QStringLiteral("Kept from the file: “big”"));
    EXPECT_TRUE(row->errorLabel()->text().startsWith(
        "The file holds a string here, where the manifest wants an integer"));
    auto* remove = row->findChild<QPushButton*>(QStringLiteral("removeHeldValuesButton"));
    ASSERT_TRUE(remove);
    QTest::mouseClick(remove, Qt::LeftButton);
    EXPECT_FALSE(bytes().contains("big"));
    EXPECT_FALSE(row->heldValuesLabel()->isVisibleTo(row));
    EXPECT_EQ(SectionArrayController::errorBadge(*dock), 1);
    window->undoAction()->trigger();
    EXPECT_EQ(bytes(), opened);
    EXPECT_EQ(SectionArrayController::errorBadge(*dock), 2);

    // The window's command lists both, ticked, and removes them as one step.
    window->removeHeldValuesAction()->trigger();
    auto* dialog = window->findChild<PayloadSelectorDialog*>(PayloadSelectorDialog::dialogObjectName);
    ASSERT_TRUE(dialog);
    QTest::mouseClick(dialog->actionButton(), Qt::LeftButton);
    EXPECT_FALSE(bytes().contains("big") || bytes().contains("largesize"));
    EXPECT_FALSE(SectionArrayController::errorBadge(*dock));
    window->undoAction()->trigger();
    EXPECT_EQ(bytes(), opened);

    const auto saved = window->document().save(ProfileDocument::SaveOperation::save);
    ASSERT_TRUE(saved);
    EXPECT_TRUE(readFile(window->document().filePath().value_or(QString())).contains("<string>big</string>"));
    window->closeApproved();
}

} // namespace
} // namespace quorlin
