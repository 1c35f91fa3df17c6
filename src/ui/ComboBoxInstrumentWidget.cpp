#include "ui/ComboBoxInstrumentWidget.h"

#include "ui/InstrumentText.h"

#include <QLineEdit>
#include <QSignalBlocker>

namespace quorlin {

ComboBoxInstrumentWidget::ComboBoxInstrumentWidget(FieldViewController& field,
                                                   InstrumentController& instrument, QWidget* parent)
    : QComboBox(parent)
    , InstrumentControlSide(field, instrument) {
    setEditable(true);
    setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    setMinimumContentsLength(24);
    // A suggestion chosen fills the field; it doesn't grow the list.
    setInsertPolicy(QComboBox::NoInsert);
    connect(lineEdit(), &QLineEdit::textEdited, this, [this](const QString& text) { report(text, false); });
    connect(this, &QComboBox::textActivated, this, [this](const QString& text) { report(text, true); });
    attach();
}

void ComboBoxInstrumentWidget::report(const QString& text, bool isFinal) {
    reportEdit(text.isEmpty() ? plist::Value() : plist::Value(text), isFinal);
}

void ComboBoxInstrumentWidget::showValue(const plist::Value& value) {
    const QString shown = InstrumentText::text(value);
    if (shown == currentText())
        return;
    const QSignalBlocker blocker(this);
    setEditText(shown);
}

void ComboBoxInstrumentWidget::showNullPlaceholder(const std::optional<plist::Value>& placeholder) {
    lineEdit()->setPlaceholderText(placeholder ? InstrumentText::text(*placeholder) : QString());
}

void ComboBoxInstrumentWidget::showContent(const plist::Array& items, bool) {
    const QSignalBlocker blocker(this);
    const QString text = currentText();
    clear();
    for (const plist::Value& item : items)
        addItem(InstrumentText::text(item));
    setEditText(text);
}

void ComboBoxInstrumentWidget::showEnabled(bool enabled) {
    setEnabled(enabled);
}

} // namespace quorlin
