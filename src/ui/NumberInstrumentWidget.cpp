#include "ui/NumberInstrumentWidget.h"

#include "fields/FloatOnlyNumberFormatter.h"
#include "fields/IntegerOnlyNumberFormatter.h"
#include "ui/InstrumentText.h"

#include <QValidator>

namespace quorlin {

namespace {

// Lets through what the formatter lets through while typing; the
// conversion at the end decides what the text stands for.
class PartialNumberValidator : public QValidator {
public:
    PartialNumberValidator(bool isReal, QObject* parent)
        : QValidator(parent)
        , m_isReal(isReal) {}

    State validate(QString& input, int&) const override {
        const bool valid = m_isReal ? FloatOnlyNumberFormatter::isPartialStringValid(input)
                                    : IntegerOnlyNumberFormatter::isPartialStringValid(input);
        return valid ? Acceptable : Invalid;
    }

private:
    bool m_isReal;
};

} // namespace

NumberInstrumentWidget::NumberInstrumentWidget(FieldViewController& field, InstrumentController& instrument,
                                               bool isReal, QWidget* parent)
    : QLineEdit(parent)
    , InstrumentControlSide(field, instrument)
    , m_isReal(isReal) {
    setValidator(new PartialNumberValidator(isReal, this));
    connect(this, &QLineEdit::textEdited, this,
            [this](const QString& text) { reportEdit(numberOfText(text), false); });
    connect(this, &QLineEdit::editingFinished, this, [this] { reportEdit(numberOfText(text()), true); });
    attach();
}

plist::Value NumberInstrumentWidget::numberOfText(const QString& text) const {
    return m_isReal ? FloatOnlyNumberFormatter::objectValue(text)
                    : IntegerOnlyNumberFormatter::objectValue(text);
}

void NumberInstrumentWidget::showValue(const plist::Value& value) {
    // A half-typed number ("-", "1.") stands for the same value as what is shown.
    if (numberOfText(text()) == value && !value.isNull())
        return;
    if (value.isNull() && numberOfText(text()).isNull() && hasFocus())
        return;
    setText(InstrumentText::text(value));
}

void NumberInstrumentWidget::showNullPlaceholder(const std::optional<plist::Value>& placeholder) {
    setPlaceholderText(placeholder ? InstrumentText::text(*placeholder) : QString());
}

void NumberInstrumentWidget::showEnabled(bool enabled) {
    setEnabled(enabled);
}

} // namespace quorlin
