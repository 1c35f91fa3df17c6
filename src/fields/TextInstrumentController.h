#pragma once

#include "fields/StringInstrumentController.h"

namespace quorlin {

// A multi-line text field; it binds and behaves as the one-line field.
class TextInstrumentController : public StringInstrumentController {
public:
    Types type() const override { return Types::text; }
};

} // namespace quorlin
