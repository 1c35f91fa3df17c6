#pragma once

#include "fields/TextBasedInstrumentController.h"

namespace quorlin {

// A text field for real numbers; the widget guards typing with
// `FloatOnlyNumberFormatter` and hands the bound value a number.
class RealInstrumentController : public TextBasedInstrumentController {
public:
    Types type() const override { return Types::real; }
};

} // namespace quorlin
