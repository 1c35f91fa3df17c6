#include "ui/TextInstrumentWidget.h"

#include "ui/InstrumentText.h"

#include <QEvent>
#include <QFontMetrics>

namespace quorlin {

namespace {
constexpr int shownLines = 4;
} // namespace

TextInstrumentWidget::TextInstrumentWidget(FieldViewController& field, InstrumentController& instrument,
                                           QWidget* parent)
    : QPlainTextEdit(parent)
    , InstrumentControlSide(field, instrument) {
    setTabChangesFocus(true);
    // Fixed to its hint, not to a number: the hint follows the font, so a
    // larger scale or font keeps the four lines whole.
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    connect(this, &QPlainTextEdit::textChanged, this, [this] {
        if (m_isShowing)
            return;
        const QString text = toPlainText();
        reportEdit(text.isEmpty() ? plist::Value() : plist::Value(text), false);
    });
    attach();
}

void TextInstrumentWidget::showValue(const plist::Value& value) {
    const QString shown = InstrumentText::text(value);
    if (shown == toPlainText())
        return;
    m_isShowing = true;
    setPlainText(shown);
    m_isShowing = false;
}

void TextInstrumentWidget::showNullPlaceholder(const std::optional<plist::Value>& placeholder) {
    setPlaceholderText(placeholder ? InstrumentText::text(*placeholder) : QString());
}

void TextInstrumentWidget::showEnabled(bool enabled) {
    setEnabled(enabled);
}

QSize TextInstrumentWidget::minimumSizeHint() const {
    return {QPlainTextEdit::minimumSizeHint().width(), sizeHint().height()};
}

void TextInstrumentWidget::changeEvent(QEvent* event) {
    QPlainTextEdit::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        updateGeometry();
}

QSize TextInstrumentWidget::sizeHint() const {
    const QFontMetrics metrics(font());
    const int frame = 2 * frameWidth() + 2 * int(document()->documentMargin());
    return {metrics.averageCharWidth() * 40, metrics.lineSpacing() * shownLines + frame};
}

} // namespace quorlin
