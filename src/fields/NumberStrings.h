#pragma once

#include "plist/Value.h"

#include <QString>

#include <optional>

namespace quorlin {

// Numbers as text the way the platform's number class writes and reads
// them, so that what a control shows matches what a manifest lists.
class NumberStrings {
public:
    // An integer as its digits, a real in its shortest exact form, a boolean
    // as "1" or "0"; nothing for anything that isn't a number.
    static std::optional<QString> stringValue(const plist::Value& number);
    // Leading blanks, an optional sign, then as many digits as there are;
    // 0 when there are none.
    static qint64 integerValue(const QString& text);
    // The longest leading part that reads as a decimal number; 0 when none does.
    static double doubleValue(const QString& text);
};

} // namespace quorlin
