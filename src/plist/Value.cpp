#include "plist/Value.h"

#include "plist/ParseError.h"

#include <cmath>
#include <limits>

namespace quorlin::plist {

namespace {

// 2001-01-01T00:00:00Z in milliseconds since the Unix epoch.
constexpr qint64 referenceDateMSecsSinceEpoch = 978307200000LL;

const Value& nullValue() {
    static const Value null;
    return null;
}

} // namespace

Date Date::fromDateTime(const QDateTime& dateTime) {
    const qint64 msecs = dateTime.toMSecsSinceEpoch() - referenceDateMSecsSinceEpoch;
    return Date{double(msecs) / 1000.0};
}

QDateTime Date::toDateTime() const {
    const double msecs = std::round(secondsSinceReferenceDate * 1000.0);
    return QDateTime::fromMSecsSinceEpoch(qint64(msecs) + referenceDateMSecsSinceEpoch, Qt::UTC);
}

QString ParseError::toString() const {
    if (line >= 0)
        return QStringLiteral("%1 (line %2)").arg(reason).arg(line);
    if (byteOffset >= 0)
        return QStringLiteral("%1 (byte %2)").arg(reason).arg(byteOffset);
    return reason;
}

Value::Value(Array array)
    : m_storage(std::make_shared<Array>(std::move(array))) {}

Value::Value(Dictionary dictionary)
    : m_storage(std::make_shared<Dictionary>(std::move(dictionary))) {}

Value Value::fromUnsigned(quint64 integer) {
    Value value;
    value.m_storage = IntegerStorage{qint64(integer), integer > quint64(std::numeric_limits<qint64>::max())};
    return value;
}

bool Value::isUnsignedInteger() const {
    const auto* integer = std::get_if<IntegerStorage>(&m_storage);
    return integer && integer->isUnsigned;
}

std::optional<bool> Value::toBoolean() const {
    if (const auto* boolean = std::get_if<bool>(&m_storage))
        return *boolean;
    return std::nullopt;
}

std::optional<qint64> Value::toInteger() const {
    const auto* integer = std::get_if<IntegerStorage>(&m_storage);
    if (!integer || integer->isUnsigned)
        return std::nullopt;
    return integer->value;
}

std::optional<quint64> Value::toUnsigned() const {
    const auto* integer = std::get_if<IntegerStorage>(&m_storage);
    if (!integer || (!integer->isUnsigned && integer->value < 0))
        return std::nullopt;
    return quint64(integer->value);
}

std::optional<double> Value::toReal() const {
    if (const auto* real = std::get_if<double>(&m_storage))
        return *real;
    return std::nullopt;
}

std::optional<QString> Value::toString() const {
    if (const auto* string = std::get_if<QString>(&m_storage))
        return *string;
    return std::nullopt;
}

std::optional<QByteArray> Value::toData() const {
    if (const auto* data = std::get_if<QByteArray>(&m_storage))
        return *data;
    return std::nullopt;
}

std::optional<Date> Value::toDate() const {
    if (const auto* date = std::get_if<Date>(&m_storage))
        return *date;
    return std::nullopt;
}

std::optional<Uid> Value::toUid() const {
    if (const auto* uid = std::get_if<Uid>(&m_storage))
        return *uid;
    return std::nullopt;
}

const Array* Value::array() const {
    const auto* ref = std::get_if<ArrayRef>(&m_storage);
    return ref ? ref->get() : nullptr;
}

const Dictionary* Value::dictionary() const {
    const auto* ref = std::get_if<DictionaryRef>(&m_storage);
    return ref ? ref->get() : nullptr;
}

std::optional<double> Value::numberAsReal() const {
    switch (type()) {
    case Type::Boolean:
        return std::get<bool>(m_storage) ? 1.0 : 0.0;
    case Type::Integer: {
        const auto integer = std::get<IntegerStorage>(m_storage);
        return integer.isUnsigned ? double(quint64(integer.value)) : double(integer.value);
    }
    case Type::Real:
        return std::get<double>(m_storage);
    default:
        return std::nullopt;
    }
}

std::optional<qint64> Value::numberAsInteger() const {
    switch (type()) {
    case Type::Boolean:
        return std::get<bool>(m_storage) ? 1 : 0;
    case Type::Integer:
        return std::get<IntegerStorage>(m_storage).value;
    case Type::Real: {
        const double real = std::get<double>(m_storage);
        // Out-of-range conversion is undefined behaviour; clamp like NSNumber does in practice.
        if (std::isnan(real))
            return 0;
        if (real >= 9223372036854775807.0)
            return std::numeric_limits<qint64>::max();
        if (real <= -9223372036854775808.0)
            return std::numeric_limits<qint64>::min();
        return qint64(real);
    }
    default:
        return std::nullopt;
    }
}

Array* Value::mutableArray() {
    auto* ref = std::get_if<ArrayRef>(&m_storage);
    if (!ref)
        return nullptr;
    if (ref->use_count() > 1)
        *ref = std::make_shared<Array>(**ref);
    return ref->get();
}

Dictionary* Value::mutableDictionary() {
    auto* ref = std::get_if<DictionaryRef>(&m_storage);
    if (!ref)
        return nullptr;
    if (ref->use_count() > 1)
        *ref = std::make_shared<Dictionary>(**ref);
    return ref->get();
}

bool operator==(const Value& a, const Value& b) {
    if (a.type() != b.type())
        return false;
    switch (a.type()) {
    case Value::Type::Array:
        return a.array() == b.array() || *a.array() == *b.array();
    case Value::Type::Dictionary:
        return a.dictionary() == b.dictionary() || *a.dictionary() == *b.dictionary();
    default:
        return a.m_storage == b.m_storage;
    }
}

const char* Value::typeName(Type type) {
    switch (type) {
    case Type::Null:
        return "null";
    case Type::Boolean:
        return "boolean";
    case Type::Integer:
        return "integer";
    case Type::Real:
        return "real";
    case Type::String:
        return "string";
    case Type::Data:
        return "data";
    case Type::Date:
        return "date";
    case Type::Array:
        return "array";
    case Type::Dictionary:
        return "dictionary";
    case Type::Uid:
        return "uid";
    }
    return "unknown";
}

QString Value::debugDescription() const {
    switch (type()) {
    case Type::Null:
        return QStringLiteral("null");
    case Type::Boolean:
        return *toBoolean() ? QStringLiteral("true") : QStringLiteral("false");
    case Type::Integer:
        return isUnsignedInteger() ? QString::number(*toUnsigned()) : QString::number(*toInteger());
    case Type::Real:
        return QString::number(*toReal(), 'g', 17);
    case Type::String:
        return u'"' + *toString() + u'"';
    case Type::Data:
        return u'<' + QString::fromLatin1(toData()->toHex()) + u'>';
    case Type::Date:
        return toDate()->toDateTime().toString(Qt::ISODateWithMs);
    case Type::Uid:
        return QStringLiteral("UID(%1)").arg(toUid()->value);
    case Type::Array: {
        QStringList items;
        for (const Value& item : *array())
            items << item.debugDescription();
        return u'(' + items.join(QStringLiteral(", ")) + u')';
    }
    case Type::Dictionary: {
        QStringList entries;
        for (auto it = dictionary()->begin(); it != dictionary()->end(); ++it)
            entries << it.key() + QStringLiteral(" = ") + it.value().debugDescription();
        return u'{' + entries.join(QStringLiteral("; ")) + u'}';
    }
    }
    return {};
}

Dictionary::Dictionary(std::initializer_list<std::pair<QString, Value>> entries) {
    for (const auto& [key, value] : entries)
        m_map.insert(key, value);
}

const Value& Dictionary::value(const QString& key) const {
    const auto it = m_map.constFind(key);
    return it == m_map.cend() ? nullValue() : *it;
}

Value* Dictionary::find(const QString& key) {
    const auto it = m_map.find(key);
    return it == m_map.end() ? nullptr : &*it;
}

} // namespace quorlin::plist
