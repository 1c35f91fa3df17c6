#pragma once

#include "fields/ValueTransformer.h"
#include "plist/Value.h"

#include <memory>
#include <optional>

namespace quorlin {

// How a binding converts and shows: the options a control asks for when it
// is bound, the same for value and content bindings.
struct BindingOptions {
    // Write at each edit of the control, not only at the end of editing.
    bool continuouslyUpdatesValue = false;
    // Shown by an empty control: grey text, or the state of a check box.
    std::optional<plist::Value> nullPlaceholder;
    std::shared_ptr<const ValueTransformer> valueTransformer;
    // A list binding puts an empty entry first that stands for no value.
    bool insertsNullPlaceholder = false;
    // The control is disabled while the bound path leads nowhere.
    bool conditionallySetsEnabled = true;
};

} // namespace quorlin
