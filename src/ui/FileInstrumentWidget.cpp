#include "ui/FileInstrumentWidget.h"

#include "fields/FieldViewController.h"
#include "fields/InstrumentController.h"

namespace quorlin {

FileInstrumentWidget::FileInstrumentWidget(FieldViewController& field, InstrumentController& controller,
                                           QWidget* parent)
    : QWidget(parent)
    , m_field(field)
    , m_controller(controller) {}

FileInstrumentWidget::~FileInstrumentWidget() = default;

} // namespace quorlin
