#include "fields/NumberStrings.h"

#include <QLocale>
#include <QRegularExpression>

#include <limits>

namespace quorlin {

std::optional<QString> NumberStrings::stringValue(const plist::Value& number) {
    if (const auto boolean = number.toBoolean())
        return *boolean ? QStringLiteral("1") : QStringLiteral("0");
    if (number.isInteger()) {
        if (number.isUnsignedInteger())
            return QString::number(*number.toUnsigned());
        return QString::number(*number.toInteger());
    }
    if (const auto real = number.toReal())
        return QString::number(*real, 'g', QLocale::FloatingPointShortest);
    return std::nullopt;
}

qint64 NumberStrings::integerValue(const QString& text) {
    const QString trimmed = text.trimmed();
    qsizetype end = 0;
    if (end < trimmed.size() && (trimmed[end] == QLatin1Char('-') || trimmed[end] == QLatin1Char('+')))
        ++end;
    while (end < trimmed.size() && trimmed[end].isDigit() && trimmed[end].unicode() < 128)
        ++end;
    bool ok = false;
    const qint64 value = trimmed.left(end).toLongLong(&ok);
    if (ok)
        return value;
    // Too many digits: the platform clamps to the nearest limit.
    if (end > 1 && trimmed[0] == QLatin1Char('-'))
        return std::numeric_limits<qint64>::min();
    return end > 0 && trimmed[end - 1].isDigit() ? std::numeric_limits<qint64>::max() : 0;
}

double NumberStrings::doubleValue(const QString& text) {
    // The C locale's notation whatever the user's locale: a stored number
    // must not change with the machine that reads it.
    static const QRegularExpression leadingNumber(
        QStringLiteral("^[+-]?(\\d+\\.?\\d*|\\.\\d+)([eE][+-]?\\d+)?"));
    const auto match = leadingNumber.match(text.trimmed());
    if (!match.hasMatch())
        return 0;
    return QLocale::c().toDouble(match.captured(0));
}

} // namespace quorlin
