#pragma once

#include "ui/InstrumentControlSide.h"

#include <QLineEdit>

namespace quorlin {

// The one-line text field of strings, and of the data and arrays that a
// transformer writes as one line. Emptying it removes the value.
class StringInstrumentWidget : public QLineEdit, public InstrumentControlSide {
    Q_OBJECT

public:
    StringInstrumentWidget(FieldViewController& field, InstrumentController& instrument,
                           QWidget* parent = nullptr);

    void showValue(const plist::Value& value) override;
    void showNullPlaceholder(const std::optional<plist::Value>& placeholder) override;
    void showEnabled(bool enabled) override;
};

} // namespace quorlin
