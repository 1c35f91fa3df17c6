#include "ui/ArrayCellDelegate.h"

#include "fields/InstrumentFactory.h"
#include "ui/ArrayTableModel.h"

#include <QComboBox>
#include <QDateTimeEdit>

namespace quorlin {

namespace {

using Types = InstrumentFactory::Types;

Types typeOf(const QModelIndex& index) {
    return Types(index.data(ArrayTableModel::InstrumentTypeRole).toInt());
}

} // namespace

QWidget* ArrayCellDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                                         const QModelIndex& index) const {
    switch (typeOf(index)) {
    case Types::popUpButton: {
        auto* popUp = new QComboBox(parent);
        popUp->addItems(index.data(ArrayTableModel::ChoicesRole).toStringList());
        // A choice is the end of editing: it writes at once.
        connect(popUp, &QComboBox::activated, this, [this, popUp] {
            auto* self = const_cast<ArrayCellDelegate*>(this);
            Q_EMIT self->commitData(popUp);
            Q_EMIT self->closeEditor(popUp);
        });
        return popUp;
    }
    case Types::date: {
        auto* editor = new QDateTimeEdit(parent);
        editor->setCalendarPopup(true);
        return editor;
    }
    default:
        return QStyledItemDelegate::createEditor(parent, option, index);
    }
}

void ArrayCellDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const {
    if (auto* popUp = qobject_cast<QComboBox*>(editor)) {
        popUp->setCurrentIndex(popUp->findText(index.data(Qt::EditRole).toString()));
        return;
    }
    if (auto* dateEditor = qobject_cast<QDateTimeEdit*>(editor)) {
        dateEditor->setDateTime(index.data(Qt::EditRole).toDateTime());
        return;
    }
    QStyledItemDelegate::setEditorData(editor, index);
}

void ArrayCellDelegate::setModelData(QWidget* editor, QAbstractItemModel* model,
                                     const QModelIndex& index) const {
    if (auto* popUp = qobject_cast<QComboBox*>(editor)) {
        model->setData(index, popUp->currentText(), Qt::EditRole);
        return;
    }
    if (auto* dateEditor = qobject_cast<QDateTimeEdit*>(editor)) {
        model->setData(index, dateEditor->dateTime(), Qt::EditRole);
        return;
    }
    QStyledItemDelegate::setModelData(editor, model, index);
}

} // namespace quorlin
