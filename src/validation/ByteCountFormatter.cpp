#include "validation/ByteCountFormatter.h"

#include <array>
#include <cmath>

namespace quorlin {

namespace {

struct Unit {
    const char* name;
    double size;
    int decimals;
};

constexpr std::array<Unit, 5> units{Unit{"KB", 1e3, 0}, Unit{"MB", 1e6, 1}, Unit{"GB", 1e9, 2},
                                    Unit{"TB", 1e12, 2}, Unit{"PB", 1e15, 2}};

QString trimmedNumber(double value, int decimals) {
    QString text = QString::number(value, 'f', decimals);
    if (text.contains(QLatin1Char('.'))) {
        while (text.endsWith(QLatin1Char('0')))
            text.chop(1);
        if (text.endsWith(QLatin1Char('.')))
            text.chop(1);
    }
    return text;
}

} // namespace

QString ByteCountFormatter::fileStyle(qint64 bytes) {
    if (bytes == 0)
        return QStringLiteral("Zero KB");
    if (bytes == 1)
        return QStringLiteral("1 byte");
    if (std::llabs(bytes) < 1000)
        return QStringLiteral("%1 bytes").arg(bytes);
    const double value = double(bytes);
    const Unit* chosen = &units.front();
    for (const Unit& unit : units) {
        if (std::fabs(value) >= unit.size)
            chosen = &unit;
    }
    return trimmedNumber(value / chosen->size, chosen->decimals) + QLatin1Char(' ') +
           QLatin1String(chosen->name);
}

} // namespace quorlin
