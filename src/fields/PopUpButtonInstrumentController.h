#pragma once

#include "fields/BindingOptions.h"
#include "fields/InstrumentController.h"

namespace quorlin {

// A pop-up of the manifest's range list, shown by the labels of its pretty
// range list when the kind allows. An empty first entry stands for no
// value, except for a required key in a table.
class PopUpButtonInstrumentController : public InstrumentController {
public:
    Types type() const override { return Types::popUpButton; }
    BindingOptions contentBindingOptions() const;
    BindingOptions selectionBindingOptions() const;

protected:
    bool rebindsWithRepresentedObject() const override { return true; }
    void applyCellMode() override;
    void bindValue() override;
};

} // namespace quorlin
