#pragma once

#include "fields/TextBasedInstrumentController.h"

namespace quorlin {

// A text field for whole numbers; the widget guards typing with
// `IntegerOnlyNumberFormatter` and hands the bound value a number.
class IntegerInstrumentController : public TextBasedInstrumentController {
public:
    Types type() const override { return Types::integer; }
};

} // namespace quorlin
