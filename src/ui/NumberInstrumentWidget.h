#pragma once

#include "ui/InstrumentControlSide.h"

#include <QLineEdit>

namespace quorlin {

// The text field of whole or real numbers: typing is guarded by the
// number formatters, and what is typed goes to the key as a number (or as
// nothing while it reads as none).
class NumberInstrumentWidget : public QLineEdit, public InstrumentControlSide {
    Q_OBJECT

public:
    NumberInstrumentWidget(FieldViewController& field, InstrumentController& instrument, bool isReal,
                           QWidget* parent = nullptr);

    void showValue(const plist::Value& value) override;
    void showNullPlaceholder(const std::optional<plist::Value>& placeholder) override;
    void showEnabled(bool enabled) override;

private:
    plist::Value numberOfText(const QString& text) const;

    bool m_isReal;
};

} // namespace quorlin
