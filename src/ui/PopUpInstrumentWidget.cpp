#include "ui/PopUpInstrumentWidget.h"

#include "ui/InstrumentText.h"

#include <QSignalBlocker>

namespace quorlin {

namespace {
constexpr int shortestShownLength = 24;
} // namespace

PopUpInstrumentWidget::PopUpInstrumentWidget(FieldViewController& field, InstrumentController& instrument,
                                             QWidget* parent)
    : QComboBox(parent)
    , InstrumentControlSide(field, instrument) {
    // Long labels mustn't widen the form past its window; the list shows them whole.
    setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    setMinimumContentsLength(shortestShownLength);
    connect(this, &QComboBox::activated, this, &PopUpInstrumentWidget::selectionDidChange);
    attach();
}

void PopUpInstrumentWidget::showContent(const plist::Array& items, bool insertsEmptyEntry) {
    const QSignalBlocker blocker(this);
    m_items = items;
    m_hasEmptyEntry = insertsEmptyEntry;
    clear();
    if (insertsEmptyEntry)
        addItem(QString());
    for (const plist::Value& item : items)
        addItem(InstrumentText::text(item));
    showValue(m_value);
}

void PopUpInstrumentWidget::showValue(const plist::Value& value) {
    const QSignalBlocker blocker(this);
    m_value = value;
    const int offset = m_hasEmptyEntry ? 1 : 0;
    if (value.isNull()) {
        setCurrentIndex(m_hasEmptyEntry ? 0 : -1);
        return;
    }
    for (qsizetype index = 0; index < m_items.size(); ++index) {
        if (m_items.at(index) == value) {
            setCurrentIndex(int(index) + offset);
            return;
        }
    }
    setCurrentIndex(-1);
}

void PopUpInstrumentWidget::showEnabled(bool enabled) {
    setEnabled(enabled);
}

void PopUpInstrumentWidget::selectionDidChange(int index) {
    const int itemIndex = index - (m_hasEmptyEntry ? 1 : 0);
    const plist::Value chosen =
        itemIndex >= 0 && itemIndex < m_items.size() ? m_items.at(itemIndex) : plist::Value();
    m_value = chosen;
    reportEdit(chosen, true);
}

} // namespace quorlin
