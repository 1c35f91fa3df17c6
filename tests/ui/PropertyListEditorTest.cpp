#include "EditorTestSupport.h"

#include "ui/ContentView.h"
#include "ui/FieldRowView.h"
#include "ui/PayloadFormView.h"
#include "ui/PropertyListEditor.h"
#include "ui/SectionFormView.h"

#include <QAccessible>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeWidget>

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using namespace test;
using Path = PropertyListEdit::Path;

// A profile with one payload no manifest describes, edited in its raw tree.
class RawEditor : public EditorFixture {
protected:
    void SetUp() override {
        EditorFixture::SetUp();
        window = openShown(QStringLiteral("unfamiliar-payload.mobileconfig"));
        ASSERT_TRUE(window);
        for (PFMSection* section : window->sections().arrangedObjects()) {
            if (section->sectionKind() == PFMSection::Kinds::unfamiliar)
                window->selectSection(section);
        }
        ASSERT_TRUE(editor());
    }

    // The view is rebuilt after each edit, on the next pass.
    PropertyListEditor* editor() const {
        QTest::qWait(0);
        return window->contentView()->findChild<PropertyListEditor*>();
    }
    const plist::Dictionary& payload() const {
        return window->document().profile()->unfamiliarPayloads().first();
    }
    void select(const Path& path) const { editor()->tree()->setCurrentItem(editor()->itemAt(path)); }

    DocumentWindow* window = nullptr;
};

TEST_F(RawEditor, EditsValuesKeysAndTypesAsUndoableStepsAndTheTreeFollows) {
    const QByteArray opened = profileBytes(*window->document().profile());
    const Path count{QStringLiteral("Count")};
    QTreeWidgetItem* item = editor()->itemAt(count);
    ASSERT_TRUE(item);
    EXPECT_EQ(item->text(PropertyListEditor::typeColumn), QStringLiteral("Integer"));

    item->setText(PropertyListEditor::valueColumn, QStringLiteral("7"));
    EXPECT_EQ(payload().integer(QStringLiteral("Count")), 7);
    EXPECT_TRUE(window->isWindowModified());
    EXPECT_EQ(editor()->itemAt(count)->text(PropertyListEditor::valueColumn), QStringLiteral("7"));

    // Text that isn't an integer is refused and the tree shows the value again.
    editor()->itemAt(count)->setText(PropertyListEditor::valueColumn, QStringLiteral("seven"));
    EXPECT_EQ(payload().integer(QStringLiteral("Count")), 7);
    EXPECT_EQ(editor()->itemAt(count)->text(PropertyListEditor::valueColumn), QStringLiteral("7"));

    select(count);
    const int stringIndex = editor()->typeChooser()->findText(QStringLiteral("String"));
    editor()->typeChooser()->setCurrentIndex(stringIndex);
    Q_EMIT editor()->typeChooser()->activated(stringIndex);
    EXPECT_EQ(payload().string(QStringLiteral("Count")), QStringLiteral("7"));

    select({QStringLiteral("Servers")});
    QTest::mouseClick(editor()->addButton(), Qt::LeftButton);
    ASSERT_EQ(payload().array(QStringLiteral("Servers"))->size(), 2);
    select({QStringLiteral("Servers"), 0});
    QTest::mouseClick(editor()->removeButton(), Qt::LeftButton);
    EXPECT_EQ(payload().array(QStringLiteral("Servers"))->first().toString(), QString());
    editor()->itemAt(count)->setText(PropertyListEditor::keyColumn, QStringLiteral("Total"));
    EXPECT_TRUE(payload().contains(QStringLiteral("Total")));

    // What a screen reader says of the editor's parts.
    for (QWidget* part : QList<QWidget*>{editor()->tree(), editor()->addButton(), editor()->removeButton(),
                                         editor()->typeChooser()}) {
        QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(part);
        ASSERT_TRUE(accessible);
        EXPECT_FALSE(accessible->text(QAccessible::Name).isEmpty()) << part->metaObject()->className();
    }

    for (int step = 0; step < 5; ++step)
        window->undoAction()->trigger();
    EXPECT_EQ(profileBytes(*window->document().profile()), opened);
    EXPECT_FALSE(window->isWindowModified());
    EXPECT_EQ(editor()->itemAt(count)->text(PropertyListEditor::valueColumn), QStringLiteral("3"));
}

// Any payload on demand: the tree edits the values the form edits, checked
// by the manifest, and the two show the same.
class RawEditorOfManifests : public EditorFixture {};

TEST_F(RawEditorOfManifests, ShowAsPropertyListEditsInStepWithTheForm) {
    DocumentWindow* window = openShown(QStringLiteral("dock.mobileconfig"));
    ASSERT_TRUE(window);
    PFMSection* dock = sectionTitled(*window, QStringLiteral("Dock"));
    window->selectSection(dock);
    window->showAsPropertyListAction()->trigger();
    const auto editor = [window] {
        QTest::qWait(0);
        return window->contentView()->findChild<PropertyListEditor*>();
    };
    ASSERT_TRUE(editor());
    const Path tile{QStringLiteral("tilesize")};
    EXPECT_EQ(editor()->itemAt(tile)->text(PropertyListEditor::valueColumn), QStringLiteral("48"));

    editor()->itemAt(tile)->setText(PropertyListEditor::valueColumn, QStringLiteral("500"));
    EXPECT_EQ(editor()->itemAt(tile)->text(PropertyListEditor::valueColumn), QStringLiteral("500"));
    EXPECT_EQ(dock->errorCount(), 1);
    // The manifest says integer: another type is refused.
    editor()->tree()->setCurrentItem(editor()->itemAt(tile));
    const int stringIndex = editor()->typeChooser()->findText(QStringLiteral("String"));
    Q_EMIT editor()->typeChooser()->activated(stringIndex);
    EXPECT_EQ(editor()->itemAt(tile)->text(PropertyListEditor::typeColumn), QStringLiteral("Integer"));
    EXPECT_EQ(window->history().undoStack().count(), 1);

    window->showAsPropertyListAction()->trigger();
    FieldRowView* row =
        window->contentView()->sectionFormView()->payloadViews().first()->rowForKey(tile.first().toString());
    ASSERT_TRUE(row);
    EXPECT_EQ(qobject_cast<QLineEdit*>(row->instrumentWidgets().first())->text(), QStringLiteral("500"));
    window->undoAction()->trigger();
    EXPECT_EQ(dock->errorCount(), 0);
    EXPECT_FALSE(window->isWindowModified());
}

} // namespace
} // namespace quorlin
