#pragma once

#include "fields/ControlSide.h"
#include "fields/ValueBinding.h"

#include <memory>

class QWidget;

namespace quorlin {

class FieldViewController;
class InstrumentController;

// The part every instrument widget shares: it attaches itself to its
// instrument once it is built and detaches before it goes, and hands its
// edits to the instrument's value binding. It keeps the row's field alive
// so that its instrument outlives it whatever order the widgets die in.
class InstrumentControlSide : public ControlSide {
public:
    InstrumentControlSide(FieldViewController& field, InstrumentController& instrument);
    ~InstrumentControlSide() override;
    InstrumentControlSide(const InstrumentControlSide&) = delete;
    InstrumentControlSide& operator=(const InstrumentControlSide&) = delete;

    InstrumentController& instrument() const { return m_instrument; }
    FieldViewController& field() const { return m_field; }

protected:
    // Called last in the constructor of the widget, when it can show values.
    void attach();
    void reportEdit(const plist::Value& value, bool isFinal);
    // Echoes of our own writes come back through showValue; a widget that
    // is being typed in must not be reset by them.
    bool isReporting() const { return m_isReporting; }

private:
    FieldViewController& m_field;
    InstrumentController& m_instrument;
    std::shared_ptr<FieldViewController> m_keepAlive;
    bool m_isReporting = false;
};

} // namespace quorlin
