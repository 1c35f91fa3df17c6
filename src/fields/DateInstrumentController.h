#pragma once

#include "fields/InstrumentController.h"

namespace quorlin {

// A date picker bound to the key's date; compact and flat in a table.
class DateInstrumentController : public InstrumentController {
public:
    Types type() const override { return Types::date; }

protected:
    void applyCellMode() override;
    void bindValue() override;
};

} // namespace quorlin
