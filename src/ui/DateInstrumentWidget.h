#pragma once

#include "ui/InstrumentControlSide.h"

#include <QDateTimeEdit>

namespace quorlin {

// A date and time that may be empty: the edit's lowest date stands for no
// value and reads as blank, so stepping down past the first date clears it.
class DateInstrumentWidget : public QDateTimeEdit, public InstrumentControlSide {
    Q_OBJECT

public:
    DateInstrumentWidget(FieldViewController& field, InstrumentController& instrument,
                         QWidget* parent = nullptr);

    void showValue(const plist::Value& value) override;
    void showEnabled(bool enabled) override;

    static QDateTime emptyDateTime();

private:
    void dateTimeDidChange(const QDateTime& dateTime);
};

} // namespace quorlin
