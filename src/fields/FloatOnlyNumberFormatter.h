#pragma once

#include "plist/Value.h"

#include <QString>

namespace quorlin {

// Guards typing into a real-number field: digits, "-" and ".", tested as a
// set of characters while typing ("1.2.3" passes); the final conversion
// decides, with at most 15 fraction digits kept.
class FloatOnlyNumberFormatter {
public:
    static constexpr int maximumFractionDigits = 15;

    static bool isPartialStringValid(const QString& partial);
    // The number the finished text stands for; null when it is none.
    static plist::Value objectValue(const QString& text);
    // The text a stored number is shown as.
    static QString stringForObjectValue(const plist::Value& number);
};

} // namespace quorlin
