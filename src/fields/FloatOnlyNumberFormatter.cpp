#include "fields/FloatOnlyNumberFormatter.h"

#include <QLocale>

#include <algorithm>
#include <cmath>

namespace quorlin {

bool FloatOnlyNumberFormatter::isPartialStringValid(const QString& partial) {
    return std::all_of(partial.begin(), partial.end(), [](QChar c) {
        return (c >= QLatin1Char('0') && c <= QLatin1Char('9')) || c == QLatin1Char('-') ||
               c == QLatin1Char('.');
    });
}

plist::Value FloatOnlyNumberFormatter::objectValue(const QString& text) {
    bool ok = false;
    const double number = QLocale::c().toDouble(text.trimmed(), &ok);
    if (!ok || !std::isfinite(number))
        return {};
    const double scale = std::pow(10.0, maximumFractionDigits);
    const double rounded = std::round(number * scale) / scale;
    return plist::Value(std::isfinite(rounded) ? rounded : number);
}

QString FloatOnlyNumberFormatter::stringForObjectValue(const plist::Value& number) {
    const auto real = number.numberAsReal();
    if (!real)
        return {};
    QString text = QString::number(*real, 'f', maximumFractionDigits);
    if (text.contains(QLatin1Char('.'))) {
        while (text.endsWith(QLatin1Char('0')))
            text.chop(1);
        if (text.endsWith(QLatin1Char('.')))
            text.chop(1);
    }
    return text;
}

} // namespace quorlin
