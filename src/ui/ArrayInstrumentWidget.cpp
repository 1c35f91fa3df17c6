#include "ui/ArrayInstrumentWidget.h"

#include "fields/ArrayInstrumentController.h"
#include "fields/FieldViewController.h"

namespace quorlin {

ArrayInstrumentWidget::ArrayInstrumentWidget(FieldViewController& field,
                                             ArrayInstrumentController& controller, QWidget* parent)
    : QWidget(parent)
    , m_field(field)
    , m_controller(controller) {}

ArrayInstrumentWidget::~ArrayInstrumentWidget() = default;

} // namespace quorlin
