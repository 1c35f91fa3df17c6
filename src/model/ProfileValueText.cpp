#include "model/ProfileValueText.h"

#include <QCryptographicHash>
#include <QLocale>
#include <QStringList>

namespace quorlin {

QString ProfileValueText::describe(const plist::Value& value) {
    switch (value.type()) {
    case plist::Value::Type::Null:
        return QStringLiteral("nothing");
    case plist::Value::Type::Boolean:
        return *value.toBoolean() ? QStringLiteral("true") : QStringLiteral("false");
    case plist::Value::Type::Integer:
    case plist::Value::Type::Real:
        return number(value);
    case plist::Value::Type::String:
        return quoted(*value.toString());
    case plist::Value::Type::Data:
        return data(*value.toData());
    case plist::Value::Type::Date:
        return value.toDate()->toDateTime().toString(Qt::ISODate);
    case plist::Value::Type::Array:
        return array(*value.array());
    case plist::Value::Type::Dictionary:
        return dictionary(*value.dictionary());
    case plist::Value::Type::Uid:
        return QStringLiteral("UID %1").arg(value.toUid()->value);
    }
    return {};
}

QString ProfileValueText::quoted(const QString& string) {
    QString escaped = string;
    escaped.replace(u'\\', QLatin1String("\\\\"))
        .replace(u'"', QLatin1String("\\\""))
        .replace(u'\n', QLatin1String("\\n"))
        .replace(u'\t', QLatin1String("\\t"))
        .replace(u'\r', QLatin1String("\\r"));
    return u'"' + escaped + u'"';
}

QString ProfileValueText::number(const plist::Value& value) {
    if (value.isUnsignedInteger())
        return QString::number(*value.toUnsigned());
    if (const auto integer = value.toInteger())
        return QString::number(*integer);
    return QString::number(*value.toReal(), 'g', QLocale::FloatingPointShortest);
}

// Base64 re-wrapped is the same data; a digest shows that it changed
// without filling the line.
QString ProfileValueText::data(const QByteArray& bytes) {
    const QByteArray digest = QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex();
    return QStringLiteral("<%1 bytes, SHA-256 %2…>")
        .arg(bytes.size())
        .arg(QString::fromLatin1(digest.left(12)));
}

QString ProfileValueText::array(const plist::Array& items) {
    QStringList parts;
    for (const plist::Value& item : items)
        parts << describe(item);
    return u'[' + parts.join(QStringLiteral(", ")) + u']';
}

QString ProfileValueText::dictionary(const plist::Dictionary& entries) {
    QStringList parts;
    for (auto entry = entries.begin(); entry != entries.end(); ++entry)
        parts << entry.key() + QStringLiteral(" = ") + describe(entry.value());
    return u'{' + parts.join(QStringLiteral("; ")) + u'}';
}

} // namespace quorlin
