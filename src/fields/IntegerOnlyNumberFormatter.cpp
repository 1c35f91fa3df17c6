#include "fields/IntegerOnlyNumberFormatter.h"

#include <algorithm>

namespace quorlin {

bool IntegerOnlyNumberFormatter::isPartialStringValid(const QString& partial) {
    return std::all_of(partial.begin(), partial.end(), [](QChar c) {
        return (c >= QLatin1Char('0') && c <= QLatin1Char('9')) || c == QLatin1Char('-');
    });
}

plist::Value IntegerOnlyNumberFormatter::objectValue(const QString& text) {
    bool ok = false;
    const qint64 number = text.trimmed().toLongLong(&ok);
    if (!ok)
        return {};
    return plist::Value(number);
}

} // namespace quorlin
