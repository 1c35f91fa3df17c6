#pragma once

#include "ui/InstrumentControlSide.h"

#include <QComboBox>

namespace quorlin {

// A text field with the manifest's suggestions in its list; any text may
// be typed. Emptying it removes the value.
class ComboBoxInstrumentWidget : public QComboBox, public InstrumentControlSide {
    Q_OBJECT

public:
    ComboBoxInstrumentWidget(FieldViewController& field, InstrumentController& instrument,
                             QWidget* parent = nullptr);

    void showValue(const plist::Value& value) override;
    void showNullPlaceholder(const std::optional<plist::Value>& placeholder) override;
    void showContent(const plist::Array& items, bool insertsEmptyEntry) override;
    void showEnabled(bool enabled) override;

private:
    void report(const QString& text, bool isFinal);
};

} // namespace quorlin
