#pragma once

#include "plist/Value.h"

namespace quorlin {

// The current date as the model sees it, so that tests can fix it.
class DateSource {
public:
    virtual ~DateSource() = default;
    virtual plist::Date now() = 0;
};

} // namespace quorlin
