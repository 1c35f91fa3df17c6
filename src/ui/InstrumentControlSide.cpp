#include "ui/InstrumentControlSide.h"

#include "fields/FieldViewController.h"
#include "fields/InstrumentController.h"

namespace quorlin {

InstrumentControlSide::InstrumentControlSide(FieldViewController& field, InstrumentController& instrument)
    : m_field(field)
    , m_instrument(instrument)
    , m_keepAlive(field.weak_from_this().lock()) {}

InstrumentControlSide::~InstrumentControlSide() {
    if (m_instrument.control() == this)
        m_instrument.attachControl(nullptr);
}

void InstrumentControlSide::attach() {
    m_instrument.attachControl(this);
}

void InstrumentControlSide::reportEdit(const plist::Value& value, bool isFinal) {
    const auto binding = m_instrument.valueBinding();
    if (!binding)
        return;
    m_isReporting = true;
    binding->controlValueDidChange(value, isFinal);
    m_isReporting = false;
}

} // namespace quorlin
