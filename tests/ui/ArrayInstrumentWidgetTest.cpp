#include "InstrumentWidgetFixture.h"
#include "support/DataManifests.h"

#include "fields/ArrayInstrumentController.h"
#include "fields/DataInstrumentController.h"
#include "fields/FileChoice.h"
#include "ui/ArrayInstrumentWidget.h"
#include "ui/ArrayTableModel.h"

#include <QApplication>
#include <QComboBox>
#include <QFile>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPointer>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>

namespace quorlin {
namespace {

using namespace test;

const QString certificatesDomain = QStringLiteral("com.example.certificates");
const QString domainsDomain = QStringLiteral("com.apple.domains");
const QString loginItemsDomain = QStringLiteral("com.apple.loginitems.managed");
const QString loginItemsKey = QStringLiteral("AutoLaunchedApplicationDictionary-managed");

class ArrayInstrumentWidgetTest : public InstrumentWidgetFixture {
protected:
    // Beside the bundled domains, one whose rows hold a certificate file
    // each, and a list of apps.
    void SetUp() override { open({dataDomain(QStringLiteral("ui/certificates.plist"))}); }

    // The table of a top-level array key, shown in a window of its own.
    ArrayInstrumentWidget& showTable(const QString& domain, const QString& key) {
        FieldViewController* row = field(domain, key);
        EXPECT_TRUE(row && !row->instruments().isEmpty());
        m_controller = dynamic_cast<ArrayInstrumentController*>(row->instruments().first().get());
        EXPECT_TRUE(m_controller);
        m_widget = std::make_unique<ArrayInstrumentWidget>(*row, *m_controller);
        m_widget->show();
        m_widget->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(m_widget.get()));
        return *m_widget;
    }

    QTableView& table() const { return *m_widget->tableView(); }
    QAbstractItemModel& view() const { return *table().model(); }
    QToolButton& button(const char* name) const { return *m_widget->findChild<QToolButton*>(name); }

    int columnOf(const QString& identifier) const {
        const auto& columns = m_controller->columns();
        for (int column = 0; column < columns.size(); ++column) {
            if (columns.at(column).identifier == identifier)
                return column;
        }
        ADD_FAILURE() << "no column " << identifier.toStdString();
        return -1;
    }

    // Types into the cell editor that adding a row opened, and ends editing.
    static void typeIntoOpenEditor(const QString& text) {
        auto* editor = qobject_cast<QLineEdit*>(QApplication::focusWidget());
        ASSERT_TRUE(editor) << "adding a row opens its first cell for editing";
        QTest::keyClicks(editor, text);
        QTest::keyClick(editor, Qt::Key_Return);
        // The delegate commits on the next turn of the event loop.
        const QPointer<QLineEdit> open(editor);
        EXPECT_TRUE(QTest::qWaitFor([&] { return !open || !open->isVisible(); }));
    }

    void selectViewRow(int row) const {
        table().selectionModel()->select(view().index(row, 0),
                                         QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    }

    ArrayInstrumentController* m_controller = nullptr;
    std::unique_ptr<ArrayInstrumentWidget> m_widget;
};

TEST_F(ArrayInstrumentWidgetTest, StringsAreAddedTypedRemovedAndUndone) {
    showTable(domainsDomain, QStringLiteral("EmailDomains"));
    const QByteArray before = bytes();
    EXPECT_TRUE(table().horizontalHeader()->isHidden()) << "a table of strings has no header";
    EXPECT_EQ(view().columnCount(), 1);
    EXPECT_TRUE(m_widget->findChild<QLabel*>("emptyTablePlaceholder")->isVisible());
    EXPECT_FALSE(button("removeRowButton").isEnabled());
    EXPECT_EQ(button("addRowButton").accessibleName(), QStringLiteral("Add"));

    QTest::mouseClick(&button("addRowButton"), Qt::LeftButton);
    typeIntoOpenEditor(QStringLiteral("first.example"));
    table().setFocus();
    QTest::keyClick(&table(), Qt::Key_Insert);
    typeIntoOpenEditor(QStringLiteral("second.example"));
    EXPECT_EQ(writtenValue(domainsDomain, QStringLiteral("EmailDomains")),
              plist::Value(plist::Array{QStringLiteral("first.example"), QStringLiteral("second.example")}));
    EXPECT_FALSE(m_widget->findChild<QLabel*>("emptyTablePlaceholder")->isVisible());

    // A cell edited after the fact writes that item only.
    view().setData(view().index(0, 0), QStringLiteral("edited.example"));
    EXPECT_EQ(view().index(0, 0).data().toString(), QStringLiteral("edited.example"));

    selectViewRow(0);
    EXPECT_TRUE(button("removeRowButton").isEnabled());
    table().setFocus();
    QTest::keyClick(&table(), Qt::Key_Delete);
    EXPECT_EQ(writtenValue(domainsDomain, QStringLiteral("EmailDomains")),
              plist::Value(plist::Array{QStringLiteral("second.example")}));
    selectViewRow(0);
    QTest::mouseClick(&button("removeRowButton"), Qt::LeftButton);
    EXPECT_TRUE(writtenValue(domainsDomain, QStringLiteral("EmailDomains")).isNull())
        << "an emptied table unsets its key";

    // Every step is on the document's history, and the table follows it back.
    m_history.undoStack().undo();
    EXPECT_EQ(view().rowCount(), 1);
    EXPECT_EQ(view().index(0, 0).data().toString(), QStringLiteral("second.example"));
    m_history.undoStack().setIndex(0);
    EXPECT_EQ(bytes(), before);
    EXPECT_EQ(view().rowCount(), 0);
    m_history.undoStack().redo();
    EXPECT_EQ(view().rowCount(), 1);
}

TEST_F(ArrayInstrumentWidgetTest, TabPastTheLastCellAddsARowAndDuplicateHasItsButton) {
    showTable(domainsDomain, QStringLiteral("EmailDomains"));
    QTest::mouseClick(&button("addRowButton"), Qt::LeftButton);
    auto* first = qobject_cast<QLineEdit*>(QApplication::focusWidget());
    ASSERT_TRUE(first);
    QTest::keyClicks(first, QStringLiteral("first.example"));
    QTest::keyClick(first, Qt::Key_Tab);
    const QPointer<QLineEdit> closed(first);
    ASSERT_TRUE(QTest::qWaitFor([&] {
        auto* editor = qobject_cast<QLineEdit*>(QApplication::focusWidget());
        return view().rowCount() == 2 && editor && editor != closed.data();
    }));
    typeIntoOpenEditor(QStringLiteral("second.example"));
    EXPECT_EQ(writtenValue(domainsDomain, QStringLiteral("EmailDomains")),
              plist::Value(plist::Array{QStringLiteral("first.example"), QStringLiteral("second.example")}));

    selectViewRow(0);
    QTest::mouseClick(&button("duplicateRowButton"), Qt::LeftButton);
    EXPECT_EQ(writtenValue(domainsDomain, QStringLiteral("EmailDomains")),
              plist::Value(plist::Array{QStringLiteral("first.example"), QStringLiteral("second.example"),
                                        QStringLiteral("first.example")}));
}

TEST_F(ArrayInstrumentWidgetTest, SortedViewEditsAndRemovesTheRightItems) {
    showTable(loginItemsDomain, loginItemsKey);
    const QByteArray before = bytes();
    ASSERT_FALSE(table().horizontalHeader()->isHidden());
    const int path = columnOf(QStringLiteral("Path"));
    const int hide = columnOf(QStringLiteral("Hide"));
    const QStringList paths{QStringLiteral("/b.app"), QStringLiteral("/C.app"), QStringLiteral("/a.app")};
    for (const QString& item : paths) {
        m_widget->addRow();
        // Leave the cell that adding opened without writing it.
        if (QWidget* editor = QApplication::focusWidget(); editor && editor != &table())
            QTest::keyClick(editor, Qt::Key_Escape);
        ASSERT_TRUE(view().setData(view().index(view().rowCount() - 1, path), item));
    }
    const auto itemPaths = [this] {
        QStringList written;
        const plist::Value items = writtenValue(loginItemsDomain, loginItemsKey);
        for (const plist::Value& item : *items.array())
            written.append(item.dictionary()->string(QStringLiteral("Path")).value_or(QString()));
        return written;
    };
    ASSERT_EQ(itemPaths(), paths);

    // Clicking the header sorts the view, ignoring case; the array keeps its order.
    QHeaderView* header = table().horizontalHeader();
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {},
                      QPoint(header->sectionViewportPosition(path) + 5, header->height() / 2));
    QStringList shown;
    for (int row = 0; row < view().rowCount(); ++row)
        shown.append(view().index(row, path).data().toString());
    EXPECT_EQ(shown,
              (QStringList{QStringLiteral("/a.app"), QStringLiteral("/b.app"), QStringLiteral("/C.app")}));
    EXPECT_EQ(itemPaths(), paths);

    // New rows hold their booleans; the check and the text land on the sorted row's item.
    const auto hidden = [](const plist::Value& item) {
        const plist::Value value = item.dictionary()->value(QStringLiteral("Hide"));
        EXPECT_FALSE(value.isNull()) << "a table's boolean is never left unset";
        return value.toBoolean().value_or(value.numberAsReal().value_or(0) != 0);
    };
    EXPECT_FALSE(hidden(writtenValue(loginItemsDomain, loginItemsKey).array()->at(2)));
    EXPECT_EQ(view().index(0, hide).data(Qt::CheckStateRole).toInt(), Qt::Unchecked);
    ASSERT_TRUE(view().setData(view().index(0, hide), Qt::Checked, Qt::CheckStateRole));
    ASSERT_TRUE(view().setData(view().index(1, path), QStringLiteral("/z.app")));
    const plist::Value edited = writtenValue(loginItemsDomain, loginItemsKey);
    EXPECT_TRUE(hidden(edited.array()->at(2)));
    EXPECT_FALSE(hidden(edited.array()->at(0)));
    EXPECT_EQ(view().index(0, hide).data(Qt::CheckStateRole).toInt(), Qt::Checked);
    EXPECT_EQ(itemPaths(),
              (QStringList{QStringLiteral("/z.app"), QStringLiteral("/C.app"), QStringLiteral("/a.app")}));
    EXPECT_EQ(view().index(2, path).data().toString(), QStringLiteral("/z.app"))
        << "the edited row sorts again";

    // Sorted rows don't move: the view's order isn't the array's.
    selectViewRow(1);
    table().setFocus();
    QTest::keyClick(&table(), Qt::Key_Up, Qt::ControlModifier);
    EXPECT_EQ(itemPaths(),
              (QStringList{QStringLiteral("/z.app"), QStringLiteral("/C.app"), QStringLiteral("/a.app")}));

    // Removing the first row shown removes "/a.app", the array's last item.
    selectViewRow(0);
    QTest::mouseClick(&button("removeRowButton"), Qt::LeftButton);
    EXPECT_EQ(itemPaths(), (QStringList{QStringLiteral("/z.app"), QStringLiteral("/C.app")}));

    m_history.undoStack().setIndex(0);
    EXPECT_EQ(bytes(), before);
    EXPECT_EQ(view().rowCount(), 0);
}

TEST_F(ArrayInstrumentWidgetTest, RowsMoveWithTheKeyboard) {
    showTable(domainsDomain, QStringLiteral("WebDomains"));
    for (const char* text : {"one", "two", "three"}) {
        m_widget->addRow();
        typeIntoOpenEditor(QString::fromLatin1(text));
    }
    const auto written = [this] { return writtenValue(domainsDomain, QStringLiteral("WebDomains")); };
    selectViewRow(2);
    table().setFocus();
    QTest::keyClick(&table(), Qt::Key_Up, Qt::ControlModifier);
    EXPECT_EQ(written(), plist::Value(plist::Array{QStringLiteral("one"), QStringLiteral("three"),
                                                   QStringLiteral("two")}));
    // The moved row stays selected, so it can move on.
    QTest::keyClick(&table(), Qt::Key_Up, Qt::ControlModifier);
    EXPECT_EQ(written(), plist::Value(plist::Array{QStringLiteral("three"), QStringLiteral("one"),
                                                   QStringLiteral("two")}));
    QTest::keyClick(&table(), Qt::Key_Up, Qt::ControlModifier);
    EXPECT_EQ(written().array()->size(), 3);
    EXPECT_EQ(written().array()->first(), plist::Value(QStringLiteral("three")));
    m_history.undoStack().undo();
    EXPECT_EQ(view().index(1, 0).data().toString(), QStringLiteral("three"));
}

TEST_F(ArrayInstrumentWidgetTest, PopUpCellsOfNestedColumnsWriteTheAllowedValues) {
    const QString dock = QStringLiteral("com.apple.dock");
    showTable(dock, QStringLiteral("static-others"));
    m_widget->addRow();
    if (QWidget* editor = QApplication::focusWidget(); editor && editor != &table())
        QTest::keyClick(editor, Qt::Key_Escape);
    const auto item = [&] {
        return *writtenValue(dock, QStringLiteral("static-others")).array()->first().dictionary();
    };
    // Picks an entry in the cell's pop-up as a user would, and answers what the pop-up offered.
    const auto pick = [&](int column, int entry) {
        const QModelIndex index = view().index(0, column);
        table().setCurrentIndex(index);
        table().edit(index);
        auto* popUp = qobject_cast<QComboBox*>(QApplication::focusWidget());
        EXPECT_TRUE(popUp) << "a column of allowed values edits with a pop-up";
        QStringList entries;
        if (!popUp)
            return entries;
        for (int row = 0; row < popUp->count(); ++row)
            entries.append(popUp->itemText(row));
        const int chosen = entry < 0 ? popUp->count() + entry : entry;
        popUp->setCurrentIndex(chosen);
        Q_EMIT popUp->activated(chosen);
        return entries;
    };
    const auto allowed = [&](int column) {
        return *m_controller->columns().at(column).properties.keyPrototype->rangeList();
    };

    // The label shown stands for the value stored.
    const int kind = columnOf(QStringLiteral("tile-type"));
    const QStringList kinds = pick(kind, -1);
    EXPECT_EQ(item().value(QStringLiteral("tile-type")), allowed(kind).last());
    EXPECT_EQ(view().index(0, kind).data().toString(), kinds.last());
    EXPECT_NE(kinds.last(), allowed(kind).last().toString()) << "the pop-up shows the manifest's labels";

    // A nested column writes into the row's inner dictionary; its empty entry unsets.
    const int arrangement = columnOf(QStringLiteral("tile-data.value.arrangement"));
    const QStringList arrangements = pick(arrangement, 2);
    ASSERT_EQ(arrangements.size(), allowed(arrangement).size() + 1);
    EXPECT_TRUE(arrangements.first().isEmpty());
    const auto details = [&] { return *item().value(QStringLiteral("tile-data")).dictionary(); };
    EXPECT_EQ(details().value(QStringLiteral("arrangement")), allowed(arrangement).at(1));
    ASSERT_TRUE(view().setData(view().index(0, columnOf(QStringLiteral("tile-data.value.label"))),
                               QStringLiteral("Documents")));
    EXPECT_EQ(details().value(QStringLiteral("label")), plist::Value(QStringLiteral("Documents")));
    pick(arrangement, 0); // the empty entry
    EXPECT_TRUE(details().value(QStringLiteral("arrangement")).isNull());
    EXPECT_EQ(details().value(QStringLiteral("label")), plist::Value(QStringLiteral("Documents")));
}

TEST_F(ArrayInstrumentWidgetTest, FileCellOfARowTakesAChosenFileOrShowsTheRefusal) {
    showTable(certificatesDomain, QStringLiteral("Certificates"));
    auto chooser = std::make_shared<ScriptedChooser>();
    m_widget->setChooser(chooser);
    m_widget->addRow();
    if (QWidget* editor = QApplication::focusWidget(); editor && editor != &table())
        QTest::keyClick(editor, Qt::Key_Escape);
    QTemporaryDir folder;
    const auto fileWith = [&](const QString& name, const QByteArray& bytes) {
        QFile file(folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        return file.fileName();
    };
    const int content = columnOf(QStringLiteral("Content"));
    const auto doubleClickContent = [&] {
        const QPointF at = table().visualRect(view().index(0, content)).center();
        QMouseEvent click(QEvent::MouseButtonDblClick, at, table().viewport()->mapToGlobal(at),
                          Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(table().viewport(), &click);
    };
    const auto written = [&] {
        return writtenValue(certificatesDomain, QStringLiteral("Certificates"))
            .array()
            ->first()
            .dictionary()
            ->value(QStringLiteral("Content"));
    };

    const QByteArray der("\x30\x82\x01\x0a", 4);
    chooser->fileToOpen = fileWith(QStringLiteral("root.cer"), der);
    doubleClickContent();
    EXPECT_EQ(chooser->offeredExtensions, QStringList{QStringLiteral("cer")});
    EXPECT_EQ(written(), plist::Value(der));
    const auto cell = m_controller->makeCellInstrument(QStringLiteral("Content"), 0);
    EXPECT_EQ(view().index(0, content).data().toString(),
              *dynamic_cast<const DataInstrumentController&>(*cell).sizeText());

    chooser->fileToOpen = fileWith(QStringLiteral("root.txt"), der + der);
    doubleClickContent();
    auto* refusal = m_widget->findChild<QLabel*>("refusalLabel");
    EXPECT_TRUE(refusal->isVisible());
    EXPECT_TRUE(refusal->text().contains(FileChoice::incompatibleText()));
    EXPECT_EQ(written(), plist::Value(der));
}

TEST_F(ArrayInstrumentWidgetTest, AddingToAListOfAppsAsksForTheApp) {
    showTable(certificatesDomain, QStringLiteral("Apps"));
    auto chooser = std::make_shared<ScriptedChooser>();
    m_widget->setChooser(chooser);
    QTest::mouseClick(&button("addRowButton"), Qt::LeftButton);
    EXPECT_EQ(view().rowCount(), 0) << "a cancelled choice adds no row";
    chooser->bundleId = QStringLiteral("com.example.Notes");
    QTest::mouseClick(&button("addRowButton"), Qt::LeftButton);
    EXPECT_EQ(writtenValue(certificatesDomain, QStringLiteral("Apps")),
              plist::Value(plist::Array{QStringLiteral("com.example.Notes")}));
    EXPECT_EQ(view().index(0, 0).data().toString(), QStringLiteral("com.example.Notes"));
}

} // namespace
} // namespace quorlin
