#pragma once

#include "fields/BindingOptions.h"
#include "fields/InstrumentController.h"
#include "schema/PFMKeyPrototype.h"

#include <QString>

#include <optional>

namespace quorlin {

// A check box. An integer key may be a switch too: its "on" is 1, or the
// larger of a two-entry range list [0, n] with n of 2 or more.
//
// A click is decided as the nilifying button cell decides it: Option alone
// stores the default explicitly; with the preference to unset default
// booleans, clicking a form's optional check box back to its default
// removes the value instead of storing it.
class BooleanInstrumentController : public InstrumentController {
public:
    enum class ClickOutcome { toggled, storedDefault, unset };

    static bool accepts(PFMKeyPrototype::Kind kind, const std::optional<QString>& typeAdapter);

    Types type() const override { return Types::boolean; }
    BindingOptions bindingOptions() const;
    // The state the check box shows: the value, or the default when unset.
    bool displayedState() const;
    ClickOutcome click(bool optionKeyAlone, bool unsetDefaultBooleans);

protected:
    bool rebindsWithRepresentedObject() const override { return true; }
    void applyCellMode() override;
    void bindValue() override;

private:
    std::optional<bool> defaultState() const;
};

} // namespace quorlin
