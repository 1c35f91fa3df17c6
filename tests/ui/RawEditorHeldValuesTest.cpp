// The raw editor of a payload a manifest describes marks the values the
// payload keeps from its file though the manifest doesn't allow them, and
// edits and removes them there in step with the form.

#include "EditorTestSupport.h"

#include "ui/ContentView.h"
#include "ui/FieldRowView.h"
#include "ui/PayloadFormView.h"
#include "ui/PropertyListEditor.h"
#include "ui/SectionFormView.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeWidget>

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using namespace test;

class RawEditorHeldValues : public EditorFixture {};

TEST_F(RawEditorHeldValues, HeldValuesAreMarkedEditedAndRemovedInTheTree) {
    DocumentWindow* window = openShown(QStringLiteral("dock-held.mobileconfig"));
    ASSERT_TRUE(window);
    PFMSection* dock = sectionTitled(*window, QStringLiteral("Dock"));
    window->selectSection(dock);
    window->showAsPropertyListAction()->trigger();
    const auto editor = [window] {
        QTest::qWait(0);
        return window->contentView()->findChild<PropertyListEditor*>();
    };
    const auto item = [&](const char* key) { return editor()->itemAt({QString::fromLatin1(key)}); };
    const QByteArray opened = profileBytes(*window->document().profile());
    ASSERT_TRUE(editor());
    // The string where an integer goes, and the value a rule leaves out.
    EXPECT_TRUE(PropertyListEditor::isMarkedHeld(item("tilesize")));
    EXPECT_TRUE(PropertyListEditor::isMarkedHeld(item("largesize")));
    EXPECT_FALSE(PropertyListEditor::isMarkedHeld(item("magnification")));
    EXPECT_TRUE(
        item("tilesize")->toolTip(PropertyListEditor::valueColumn).contains(QStringLiteral("integer")));

    // Still the wrong class, but the held value itself can change; then its type.
    item("tilesize")->setText(PropertyListEditor::valueColumn, QStringLiteral("32"));
    EXPECT_TRUE(PropertyListEditor::isMarkedHeld(item("tilesize")));
    editor()->tree()->setCurrentItem(item("tilesize"));
    const int integerIndex = editor()->typeChooser()->findText(QStringLiteral("Integer"));
    Q_EMIT editor()->typeChooser()->activated(integerIndex);
    EXPECT_FALSE(PropertyListEditor::isMarkedHeld(item("tilesize")));
    EXPECT_EQ(dock->errorCount(), 1);
    editor()->tree()->setCurrentItem(item("largesize"));
    QTest::mouseClick(editor()->removeButton(), Qt::LeftButton);
    EXPECT_FALSE(item("largesize"));
    EXPECT_EQ(dock->errorCount(), 0);

    // The form shows what the tree set.
    window->showAsPropertyListAction()->trigger();
    FieldRowView* row = window->contentView()->sectionFormView()->payloadViews().first()->rowForKey(
        QStringLiteral("tilesize"));
    ASSERT_TRUE(row);
    EXPECT_EQ(qobject_cast<QLineEdit*>(row->instrumentWidgets().first())->text(), QStringLiteral("32"));
    EXPECT_FALSE(row->heldValuesLabel()->isVisibleTo(row));

    for (int step = 0; step < 3; ++step)
        window->undoAction()->trigger();
    EXPECT_EQ(profileBytes(*window->document().profile()), opened);
    EXPECT_EQ(dock->errorCount(), 2);
}

} // namespace
} // namespace quorlin
