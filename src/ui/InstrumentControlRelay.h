#pragma once

#include "fields/ControlSide.h"

#include <functional>

namespace quorlin {

// The control a widget attaches to an instrument when it reads what to show
// from the instrument itself: each push of the binding only tells the widget
// to look again.
class InstrumentControlRelay : public ControlSide {
public:
    explicit InstrumentControlRelay(std::function<void()> changed = {})
        : m_changed(std::move(changed)) {}

    void showValue(const plist::Value&) override { tell(); }
    void showContent(const plist::Array&, bool) override { tell(); }
    void showEnabled(bool enabled) override {
        m_enabled = enabled;
        tell();
    }
    bool enabled() const { return m_enabled; }

private:
    void tell() const {
        if (m_changed)
            m_changed();
    }

    std::function<void()> m_changed;
    bool m_enabled = true;
};

} // namespace quorlin
