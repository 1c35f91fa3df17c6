#pragma once

#include "plist/Value.h"

#include <QString>

namespace quorlin {

// Guards typing into a whole-number field. Only the characters are tested
// while typing, so "1-2" passes; the final conversion decides.
class IntegerOnlyNumberFormatter {
public:
    // Empty, or nothing but decimal digits and "-".
    static bool isPartialStringValid(const QString& partial);
    // The number the finished text stands for; null when it is none.
    static plist::Value objectValue(const QString& text);
};

} // namespace quorlin
