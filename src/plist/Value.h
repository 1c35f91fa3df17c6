#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QMap>
#include <QString>

#include <concepts>
#include <initializer_list>
#include <memory>
#include <optional>
#include <utility>
#include <variant>

namespace quorlin::plist {

class Value;
class Dictionary;
using Array = QList<Value>;

// Seconds since 2001-01-01T00:00:00Z, the way Apple stores dates: binary
// plists round-trip exactly, and dates far outside 1970..2038 are ordinary.
struct Date {
    double secondsSinceReferenceDate = 0;

    static Date fromDateTime(const QDateTime& dateTime);
    QDateTime toDateTime() const; // UTC, millisecond precision
    friend bool operator==(Date, Date) = default;
};

// Keyed-archive object reference; only binary plists carry it natively.
struct Uid {
    quint64 value = 0;
    friend bool operator==(Uid, Uid) = default;
};

// One property-list value. Copies are cheap: strings, data and containers are
// shared until one side changes. A default-constructed Value is null, which is
// what every typed accessor treats as "absent"; a value of the wrong class
// counts as absent too.
class Value {
public:
    enum class Type : quint8 { Null, Boolean, Integer, Real, String, Data, Date, Array, Dictionary, Uid };

    Value() = default;
    // Only a real bool makes a boolean: a pointer or an int must not slip in.
    template <typename B>
    requires std::same_as<B, bool> Value(B boolean)
        : m_storage(boolean) {}
    Value(int integer)
        : m_storage(IntegerStorage{qint64(integer), false}) {}
    Value(qint64 integer)
        : m_storage(IntegerStorage{integer, false}) {}
    Value(double real)
        : m_storage(real) {}
    Value(const QString& string)
        : m_storage(string) {}
    Value(const char* utf8)
        : m_storage(QString::fromUtf8(utf8)) {}
    Value(const QByteArray& data)
        : m_storage(data) {}
    Value(Date date)
        : m_storage(date) {}
    Value(Uid uid)
        : m_storage(uid) {}
    Value(Array array);
    Value(Dictionary dictionary);

    // Integers above the signed 64-bit range stay unsigned, as CFNumber keeps them.
    static Value fromUnsigned(quint64 integer);

    Type type() const { return Type(m_storage.index()); }
    bool isNull() const { return type() == Type::Null; }
    bool isBoolean() const { return type() == Type::Boolean; }
    bool isInteger() const { return type() == Type::Integer; }
    bool isReal() const { return type() == Type::Real; }
    bool isString() const { return type() == Type::String; }
    bool isData() const { return type() == Type::Data; }
    bool isDate() const { return type() == Type::Date; }
    bool isArray() const { return type() == Type::Array; }
    bool isDictionary() const { return type() == Type::Dictionary; }
    bool isUid() const { return type() == Type::Uid; }
    // An integer too large for qint64, kept as the unsigned value it was.
    bool isUnsignedInteger() const;

    // Strict access: nothing unless the value is of exactly that class.
    std::optional<bool> toBoolean() const;
    std::optional<qint64> toInteger() const;   // nothing for an unsigned value above INT64_MAX
    std::optional<quint64> toUnsigned() const; // nothing for a negative integer
    std::optional<double> toReal() const;
    std::optional<QString> toString() const;
    std::optional<QByteArray> toData() const;
    std::optional<Date> toDate() const;
    std::optional<Uid> toUid() const;
    const Array* array() const;
    const Dictionary* dictionary() const;

    // Number access as the platform's number class has it: booleans,
    // integers and reals all answer; a real truncates toward zero as an integer.
    std::optional<double> numberAsReal() const;
    std::optional<qint64> numberAsInteger() const;

    // Mutable access to a container, unshared first; null when not that class.
    Array* mutableArray();
    Dictionary* mutableDictionary();

    // Deep equality of class and content. Reals compare by value (so 0.0 == -0.0),
    // an integer never equals a real or a boolean.
    friend bool operator==(const Value& a, const Value& b);

    static const char* typeName(Type type);
    // A short human-readable rendering, for test failures and diagnostics.
    QString debugDescription() const;

private:
    struct IntegerStorage {
        qint64 value = 0;
        bool isUnsigned = false; // value's bits are a quint64 above INT64_MAX
        friend bool operator==(IntegerStorage, IntegerStorage) = default;
    };
    using ArrayRef = std::shared_ptr<Array>;
    using DictionaryRef = std::shared_ptr<Dictionary>;

    // The order of the alternatives is the order of Type.
    std::variant<std::monostate, bool, IntegerStorage, double, QString, QByteArray, Date, ArrayRef,
                 DictionaryRef, Uid>
        m_storage;
};

// A dictionary with string keys, kept sorted by key (UTF-16 order), which is
// also the order in which Apple's XML writer emits them.
class Dictionary {
public:
    using Map = QMap<QString, Value>;
    using const_iterator = Map::const_iterator;

    Dictionary() = default;
    Dictionary(std::initializer_list<std::pair<QString, Value>> entries);

    qsizetype size() const { return m_map.size(); }
    bool isEmpty() const { return m_map.isEmpty(); }
    bool contains(const QString& key) const { return m_map.contains(key); }
    QStringList keys() const { return m_map.keys(); }

    // The value under key, or a null value.
    const Value& value(const QString& key) const;
    // The stored value to change in place, or nullptr.
    Value* find(const QString& key);
    void insert(const QString& key, const Value& value) { m_map.insert(key, value); }
    bool remove(const QString& key) { return m_map.remove(key) > 0; }
    Value take(const QString& key) { return m_map.take(key); }

    // Typed access by key: absent, null or of another class all give nothing.
    std::optional<bool> boolean(const QString& key) const { return value(key).toBoolean(); }
    std::optional<qint64> integer(const QString& key) const { return value(key).toInteger(); }
    std::optional<double> real(const QString& key) const { return value(key).toReal(); }
    std::optional<double> number(const QString& key) const { return value(key).numberAsReal(); }
    std::optional<QString> string(const QString& key) const { return value(key).toString(); }
    std::optional<QByteArray> data(const QString& key) const { return value(key).toData(); }
    std::optional<Date> date(const QString& key) const { return value(key).toDate(); }
    const Array* array(const QString& key) const { return value(key).array(); }
    const Dictionary* dictionary(const QString& key) const { return value(key).dictionary(); }

    const_iterator begin() const { return m_map.cbegin(); }
    const_iterator end() const { return m_map.cend(); }
    const Map& map() const { return m_map; }
    Map& map() { return m_map; }

    friend bool operator==(const Dictionary& a, const Dictionary& b) { return a.m_map == b.m_map; }

private:
    Map m_map;
};

} // namespace quorlin::plist
