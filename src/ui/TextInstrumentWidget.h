#pragma once

#include "ui/InstrumentControlSide.h"

#include <QPlainTextEdit>

namespace quorlin {

// The several-line text field. Emptying it removes the value.
class TextInstrumentWidget : public QPlainTextEdit, public InstrumentControlSide {
    Q_OBJECT

public:
    TextInstrumentWidget(FieldViewController& field, InstrumentController& instrument,
                         QWidget* parent = nullptr);

    void showValue(const plist::Value& value) override;
    void showNullPlaceholder(const std::optional<plist::Value>& placeholder) override;
    void showEnabled(bool enabled) override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void changeEvent(QEvent* event) override;

private:
    bool m_isShowing = false;
};

} // namespace quorlin
