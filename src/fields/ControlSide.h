#pragma once

#include "plist/Value.h"

#include <optional>

namespace quorlin {

// The widget end of a binding. A control shows what the binding pushes and
// reports its own edits back through `ValueBinding::controlValueDidChange`.
// Values on this side are plain plist values after any transformer has run;
// a null value means "nothing", which a control shows as empty.
class ControlSide {
public:
    virtual ~ControlSide() = default;
    virtual void showValue(const plist::Value& value) = 0;
    // The grey text (or state, for a check box) of a control with no value;
    // nothing removes it.
    virtual void showNullPlaceholder(const std::optional<plist::Value>& placeholder) { (void)placeholder; }
    // Items of a list control: a pop-up's entries, a combo box's suggestions.
    // `insertsEmptyEntry` asks for an empty first entry that stands for no value.
    virtual void showContent(const plist::Array& items, bool insertsEmptyEntry) {
        (void)items;
        (void)insertsEmptyEntry;
    }
    virtual void showEnabled(bool enabled) { (void)enabled; }
};

} // namespace quorlin
