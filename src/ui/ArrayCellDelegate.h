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
};

} // namespace quorlin
