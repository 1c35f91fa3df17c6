#pragma once

#include "ui/InstrumentControlSide.h"

#include <QCheckBox>

namespace quorlin {

class BooleanInstrumentController;

// The check box. A click is the instrument's to decide (toggle, store the
// default with Alt, or unset back to the default), so the box never flips
// by itself: it shows what the instrument then displays.
class BooleanInstrumentWidget : public QCheckBox, public InstrumentControlSide {
    Q_OBJECT

public:
    BooleanInstrumentWidget(FieldViewController& field, BooleanInstrumentController& instrument,
                            QWidget* parent = nullptr);

    void showValue(const plist::Value& value) override;
    void showNullPlaceholder(const std::optional<plist::Value>& placeholder) override;
    void showEnabled(bool enabled) override;

protected:
    void nextCheckState() override;

private:
    BooleanInstrumentController& m_boolean;
    bool m_placeholderState = false;
};

} // namespace quorlin
