#pragma once

#include "model/DateSource.h"

namespace quorlin {

// The clock of the machine.
class SystemDateSource : public DateSource {
public:
    plist::Date now() override;
};

} // namespace quorlin
