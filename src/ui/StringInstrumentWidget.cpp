#include "ui/StringInstrumentWidget.h"

#include "ui/InstrumentText.h"

namespace quorlin {

StringInstrumentWidget::StringInstrumentWidget(FieldViewController& field, InstrumentController& instrument,
                                               QWidget* parent)
    : QLineEdit(parent)
    , InstrumentControlSide(field, instrument) {
    connect(this, &QLineEdit::textEdited, this, [this](const QString& text) {
        reportEdit(text.isEmpty() ? plist::Value() : plist::Value(text), false);
    });
    connect(this, &QLineEdit::editingFinished, this,
            [this] { reportEdit(text().isEmpty() ? plist::Value() : plist::Value(text()), true); });
    attach();
}

void StringInstrumentWidget::showValue(const plist::Value& value) {
    const QString shown = InstrumentText::text(value);
    // Keeps the caret where it is when the value is what was typed.
    if (shown != text())
        setText(shown);
}

void StringInstrumentWidget::showNullPlaceholder(const std::optional<plist::Value>& placeholder) {
    setPlaceholderText(placeholder ? InstrumentText::text(*placeholder) : QString());
}

void StringInstrumentWidget::showEnabled(bool enabled) {
    setEnabled(enabled);
}

} // namespace quorlin
