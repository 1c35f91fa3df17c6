#include "ui/InstrumentText.h"

#include "fields/FloatOnlyNumberFormatter.h"

namespace quorlin {

QString InstrumentText::text(const plist::Value& value) {
    if (value.isNull())
        return QString();
    if (const auto string = value.toString())
        return *string;
    if (value.isBoolean())
        return *value.toBoolean() ? QStringLiteral("true") : QStringLiteral("false");
    if (value.isInteger()) {
        if (value.isUnsignedInteger())
            return QString::number(*value.toUnsigned());
        return QString::number(*value.toInteger());
    }
    if (value.isReal())
        return FloatOnlyNumberFormatter::stringForObjectValue(value);
    return value.debugDescription();
}

} // namespace quorlin
