#pragma once

#include "plist/Value.h"

#include <QString>

namespace quorlin {

// How an instrument widget writes a bound value as text: strings as they
// are, numbers plainly, nothing as empty.
class InstrumentText {
public:
    static QString text(const plist::Value& value);
};

} // namespace quorlin
