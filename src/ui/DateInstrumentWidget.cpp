#include "ui/DateInstrumentWidget.h"

#include <QSignalBlocker>

namespace quorlin {

DateInstrumentWidget::DateInstrumentWidget(FieldViewController& field, InstrumentController& instrument,
                                           QWidget* parent)
    : QDateTimeEdit(parent)
    , InstrumentControlSide(field, instrument) {
    setCalendarPopup(true);
    setMinimumDateTime(emptyDateTime());
    // A blank special text makes the lowest date read as empty.
    setSpecialValueText(QStringLiteral(" "));
    setDisplayFormat(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    connect(this, &QDateTimeEdit::dateTimeChanged, this, &DateInstrumentWidget::dateTimeDidChange);
    attach();
}

QDateTime DateInstrumentWidget::emptyDateTime() {
    return QDateTime(QDate(1752, 9, 14), QTime(0, 0), Qt::LocalTime);
}

void DateInstrumentWidget::showValue(const plist::Value& value) {
    const QSignalBlocker blocker(this);
    const auto date = value.toDate();
    setDateTime(date ? date->toDateTime().toLocalTime() : emptyDateTime());
}

void DateInstrumentWidget::showEnabled(bool enabled) {
    setEnabled(enabled);
}

void DateInstrumentWidget::dateTimeDidChange(const QDateTime& dateTime) {
    if (dateTime <= emptyDateTime()) {
        reportEdit(plist::Value(), true);
        return;
    }
    reportEdit(plist::Value(plist::Date::fromDateTime(dateTime)), true);
}

} // namespace quorlin
