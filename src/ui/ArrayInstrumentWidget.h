#pragma once

#include <QWidget>

namespace quorlin {

class ArrayInstrumentController;
class FieldViewController;

// The table of an array field: rows and columns as the controller gives them,
// every edit written through the controller so it lands on the undo stack.
class ArrayInstrumentWidget : public QWidget {
    Q_OBJECT
public:
    ArrayInstrumentWidget(FieldViewController& field, ArrayInstrumentController& controller,
                          QWidget* parent = nullptr);
    ~ArrayInstrumentWidget() override;

private:
    FieldViewController& m_field;
    ArrayInstrumentController& m_controller;
};

} // namespace quorlin
