#pragma once

#include "ui/InstrumentControlSide.h"

#include <QComboBox>

namespace quorlin {

// The pop-up of a range list: its entries are the binding's content, the
// selection its value, and an empty first entry stands for no value.
class PopUpInstrumentWidget : public QComboBox, public InstrumentControlSide {
    Q_OBJECT

public:
    PopUpInstrumentWidget(FieldViewController& field, InstrumentController& instrument,
                          QWidget* parent = nullptr);

    void showValue(const plist::Value& value) override;
    void showContent(const plist::Array& items, bool insertsEmptyEntry) override;
    void showEnabled(bool enabled) override;

private:
    void selectionDidChange(int index);

    plist::Array m_items;
    bool m_hasEmptyEntry = false;
    plist::Value m_value;
};

} // namespace quorlin
