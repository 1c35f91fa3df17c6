#pragma once

class QWidget;

namespace quorlin {

class FieldViewController;
class InstrumentController;

// Makes the widget of one instrument and attaches it as the instrument's
// control. The widget detaches itself before it goes.
class InstrumentWidgetFactory {
public:
    static QWidget* makeWidget(FieldViewController& field, InstrumentController& instrument, QWidget* parent);
};

} // namespace quorlin
