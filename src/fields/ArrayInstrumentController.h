#pragma once

#include "fields/ColumnProperties.h"
#include "fields/InstrumentController.h"
#include "fields/PreferenceKeyArrayController.h"
#include "model/DateSource.h"

#include <QList>
#include <QString>

#include <memory>
#include <optional>

namespace quorlin {

// The table that edits an array key: one row per item of one item
// prototype, one column per scalar of a dictionary item (nested
// dictionaries flatten into more columns), a single header-less column for
// items that are scalars or free-form dictionaries. Every change of the
// rows replaces the array's value through the writer.
class ArrayInstrumentController : public InstrumentController {
public:
    static inline const QString nonDictionaryArrayColumn = QStringLiteral("nonDictionaryArrayColumn");

    struct Column {
        QString identifier;
        QString title;
        int minimumWidth = 80;
        ColumnProperties properties;
        // Rows sort by this path, ascending; strings ignore case.
        QString sortKey;
        bool comparesCaseInsensitively = false;
    };
    // What adding a row needs: a row was added, or the widget must ask the
    // user first (the app sheet, or a property-list file) and hand the
    // answer to `addChosenBundleId` or `addChosenPlist`.
    enum class AddOutcome { added, needsAppSelection, needsPlistFile };

    explicit ArrayInstrumentController(std::shared_ptr<DateSource> dates = {});

    Types type() const override { return Types::array; }

    int underlyingSubkeyPrototypeIndex() const { return m_underlyingSubkeyPrototypeIndex; }
    void setUnderlyingSubkeyPrototypeIndex(int index);
    const PreferenceKey::PrototypePointer& underlyingSubkeyPrototype() const {
        return m_underlyingSubkeyPrototype;
    }
    const PreferenceKeyArrayController& arrayController() const { return m_arrayController; }

    // Built on load; none without an item prototype.
    const QList<Column>& columns() const { return m_columns; }
    const Column* column(const QString& identifier) const;
    bool hasHeader() const { return m_hasHeader; }

    PreferenceKey::KeyList rows() const { return m_arrayController.arrangedObjects(); }
    // An instrument in table mode for one cell, representing the key the
    // column's path reaches from the row; null when the column is unknown.
    std::unique_ptr<InstrumentController> makeCellInstrument(const QString& columnIdentifier, int row) const;
    // "value.<binding name>", or nothing when the cell edits the row's key.
    static std::optional<QString> nestedPath(const ColumnProperties& properties);

    void setSelection(const QList<int>& rows);
    const QList<int>& selection() const { return m_arrayController.selectionIndexes(); }
    // Segments 1 (remove) and 2 (duplicate) follow the selection.
    bool canRemoveOrDuplicate() const { return !selection().isEmpty(); }

    AddOutcome addRow();
    void addChosenBundleId(const QString& bundleId);
    void addChosenPlist(const plist::Value& value);
    void removeSelectedRows();
    void duplicateSelectedRows();
    // Moves a row to another position among the rows.
    void moveRow(int from, int to);

    // Set by adding: the row to open for editing when it appears, and where.
    std::optional<int> shouldEditRowAfterAdding() const { return m_shouldEditRowAfterAdding; }
    // The row appeared: the column to start editing in, once.
    std::optional<int> rowViewDidAppear(int row);
    // Tab at the end of a cell's editing: on the last row a new row comes
    // (true), else editing moves to the next row in the same column.
    bool tabPastEndOfCell(int row, int column);
    // A double click: below the last row it adds one.
    bool doubleClick(int row);

protected:
    void representedObjectDidChange() override;
    void bindValue() override;

private:
    void updateUnderlyingPrototype();
    void buildColumns();
    bool underlyingIsConventionalDictionary() const;
    std::optional<Types> singleColumnType() const;
    void appendItem(const PreferenceKey::Pointer& item);
    void writeItems(const PreferenceKey::KeyList& items);

    PreferenceKeyArrayController m_arrayController;
    std::shared_ptr<DateSource> m_dates;
    int m_underlyingSubkeyPrototypeIndex = 0;
    PreferenceKey::PrototypePointer m_underlyingSubkeyPrototype;
    QList<Column> m_columns;
    bool m_hasHeader = false;
    std::optional<int> m_shouldEditRowAfterAdding;
    std::optional<int> m_columnToEditAfterAdding;
};

} // namespace quorlin
