#include "ui/ArrayCellDelegate.h"

#include "fields/InstrumentFactory.h"
#include "ui/ArrayTableModel.h"

#include <QComboBox>
#include <QDateTimeEdit>
#include <QKeyEvent>
#include <QPersistentModelIndex>

namespace quorlin {

namespace {

using Types = InstrumentFactory::Types;

Types typeOf(const QModelIndex& index) {
    return Types(index.data(ArrayTableModel::InstrumentTypeRole).toInt());
}

const char* const cellProperty = "arrayCell";

bool isLastCell(const QModelIndex& index) {
    return index.isValid() && index.row() == index.model()->rowCount() - 1 &&
           index.column() == index.model()->columnCount() - 1;
}

} // namespace

QWidget* ArrayCellDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                                         const QModelIndex& index) const {
    QWidget* editor = makeEditor(parent, option, index);
    if (editor)
        editor->setProperty(cellProperty, QVariant::fromValue(QPersistentModelIndex(index)));
    return editor;
}

bool ArrayCellDelegate::eventFilter(QObject* object, QEvent* event) {
    auto* editor = qobject_cast<QWidget*>(object);
    if (editor && event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        const QModelIndex cell = editor->property(cellProperty).value<QPersistentModelIndex>();
        if (key->key() == Qt::Key_Tab && key->modifiers() == Qt::NoModifier && isLastCell(cell)) {
            Q_EMIT commitData(editor);
            Q_EMIT closeEditor(editor, NoHint);
            Q_EMIT tabbedPastLastCell(cell.row(), cell.column());
            return true;
        }
    }
    return QStyledItemDelegate::eventFilter(object, event);
}

QWidget* ArrayCellDelegate::makeEditor(QWidget* parent, const QStyleOptionViewItem& option,
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
