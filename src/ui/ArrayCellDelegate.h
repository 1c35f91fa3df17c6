#pragma once

#include <QStyledItemDelegate>

namespace quorlin {

// The editors of an array table's cells, by the column's instrument: a
// pop-up of the allowed values, a date editor, a text field for the rest.
// Check boxes toggle without an editor.
class ArrayCellDelegate : public QStyledItemDelegate {
    Q_OBJECT
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override;
    void setEditorData(QWidget* editor, const QModelIndex& index) const override;
    void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override;

Q_SIGNALS:
    // Tab in the editor of the table's last cell: the edit is committed and
    // the table is to add a row, where editing goes on.
    void tabbedPastLastCell(int row, int column);

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    QWidget* makeEditor(QWidget* parent, const QStyleOptionViewItem& option, const QModelIndex& index) const;
};

} // namespace quorlin
