#pragma once

#include "fields/BindingOptions.h"
#include "fields/InstrumentController.h"

#include <QString>

#include <optional>

namespace quorlin {

// A text field bound to the key's value, updated at each keystroke, with a
// grey placeholder that tells what the field wants and, in a table, that it
// is required.
class TextBasedInstrumentController : public InstrumentController {
public:
    virtual BindingOptions bindingOptions() const;
    // "[Required]", for an empty required cell of a table.
    virtual std::optional<QString> requiredPlaceholder() const;
    static QString requiredWord();

protected:
    bool rebindsWithRepresentedObject() const override { return true; }
    void applyCellMode() override;
    void bindValue() override;
};

} // namespace quorlin
