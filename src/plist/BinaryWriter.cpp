#include "plist/BinaryWriter.h"

#include <QHash>

#include <algorithm>
#include <bit>
#include <optional>
#include <vector>

namespace quorlin::plist {

namespace {

void appendBigEndian(QByteArray& out, quint64 value, int size) {
    for (int shift = 8 * (size - 1); shift >= 0; shift -= 8)
        out.append(char(uchar(value >> shift)));
}

char* putBigEndian(char* out, quint64 value, int size) {
    for (int shift = 8 * (size - 1); shift >= 0; shift -= 8)
        *out++ = char(uchar(value >> shift));
    return out;
}

// Fewest of 1, 2, 4 or 8 bytes that hold `value`.
int byteWidth(quint64 value) {
    if (value <= 0xFF)
        return 1;
    if (value <= 0xFFFF)
        return 2;
    if (value <= 0xFFFFFFFF)
        return 4;
    return 8;
}

int widthExponent(int width) {
    return std::countr_zero(unsigned(width));
}

// Negative integers take all eight bytes: the value is written as unsigned bits.
void appendInteger(QByteArray& out, quint64 bits) {
    const int width = byteWidth(bits);
    out.append(char(0x10 | widthExponent(width)));
    appendBigEndian(out, bits, width);
}

// Lengths up to 14 fit in the marker; longer ones follow it as an integer.
void appendMarker(QByteArray& out, uchar kind, quint64 count) {
    if (count < 0x0F) {
        out.append(char(kind | count));
        return;
    }
    out.append(char(kind | 0x0F));
    appendInteger(out, count);
}

void appendReal(QByteArray& out, uchar marker, double real) {
    out.append(char(marker));
    appendBigEndian(out, std::bit_cast<quint64>(real), 8);
}

void appendString(QByteArray& out, const QString& string) {
    const QChar* units = string.constData();
    const qsizetype count = string.size();
    const bool isAscii = std::all_of(units, units + count, [](QChar c) { return c.unicode() < 0x80; });
    appendMarker(out, isAscii ? 0x50 : 0x60, quint64(count));
    const qsizetype start = out.size();
    out.resize(start + (isAscii ? count : 2 * count));
    char* bytes = out.data() + start;
    for (qsizetype i = 0; i < count; ++i) {
        const char16_t unit = units[i].unicode();
        if (isAscii) {
            bytes[i] = char(unit);
        } else {
            bytes[2 * i] = char(unit >> 8);
            bytes[2 * i + 1] = char(unit);
        }
    }
}

void appendUid(QByteArray& out, quint64 uid) {
    const int width = byteWidth(uid);
    out.append(char(0x80 | (width - 1)));
    appendBigEndian(out, uid, width);
}

// The encoding of anything that is not a container. Equal encodings are the
// same object, so it doubles as the key under which objects are unique'd:
// it tells 1 from 1.0 and true, and keeps -0.0 apart from 0.0.
QByteArray encodeLeaf(const Value& value) {
    QByteArray out;
    switch (value.type()) {
    case Value::Type::Boolean:
        out.append(*value.toBoolean() ? '\x09' : '\x08');
        break;
    case Value::Type::Integer:
        if (value.isUnsignedInteger()) {
            out.append('\x14');
            appendBigEndian(out, 0, 8);
            appendBigEndian(out, *value.toUnsigned(), 8);
        } else {
            appendInteger(out, quint64(*value.toInteger()));
        }
        break;
    case Value::Type::Real:
        appendReal(out, 0x23, *value.toReal());
        break;
    case Value::Type::Date:
        appendReal(out, 0x33, value.toDate()->secondsSinceReferenceDate);
        break;
    case Value::Type::Data: {
        const QByteArray data = *value.toData();
        appendMarker(out, 0x40, quint64(data.size()));
        out.append(data);
        break;
    }
    case Value::Type::String:
        appendString(out, *value.toString());
        break;
    case Value::Type::Uid:
        appendUid(out, value.toUid()->value);
        break;
    default:
        break;
    }
    return out;
}

// What tells two scalars' encodings apart without making them: their class
// (signed and unsigned integers apart) and their bits, so 1, 1.0 and true
// differ and -0.0 is not 0.0. Data is unique'd by its bytes instead.
struct ScalarKey {
    Value::Type type = Value::Type::Null;
    bool isUnsigned = false;
    quint64 bits = 0;
    friend bool operator==(const ScalarKey&, const ScalarKey&) = default;
};

size_t qHash(const ScalarKey& key, size_t seed = 0) {
    return qHashMulti(seed, quint8(key.type), key.isUnsigned, key.bits);
}

ScalarKey scalarKey(const Value& value) {
    switch (value.type()) {
    case Value::Type::Boolean:
        return {value.type(), false, quint64(*value.toBoolean())};
    case Value::Type::Integer:
        return value.isUnsignedInteger() ? ScalarKey{value.type(), true, *value.toUnsigned()}
                                         : ScalarKey{value.type(), false, quint64(*value.toInteger())};
    case Value::Type::Real:
        return {value.type(), false, std::bit_cast<quint64>(*value.toReal())};
    case Value::Type::Date:
        return {value.type(), false, std::bit_cast<quint64>(value.toDate()->secondsSinceReferenceDate)};
    case Value::Type::Uid:
        return {value.type(), false, value.toUid()->value};
    default:
        return {value.type(), false, 0};
    }
}

// Lays the tree out as a list of objects, root first and each container
// before its contents, then writes them with references as small as the
// object count allows. Leaf encodings and container references live in one
// arena each, so an object costs no allocation of its own.
class Encoder {
public:
    std::optional<quint64> flatten(const Value& value) {
        switch (value.type()) {
        case Value::Type::Null:
            return std::nullopt;
        case Value::Type::Array:
            return flattenArray(*value.array());
        case Value::Type::Dictionary:
            return flattenDictionary(*value.dictionary());
        case Value::Type::String:
            return flattenString(*value.toString());
        default:
            return flattenLeaf(value);
        }
    }

    // Where the null value sits, for the failure reason; filled while unwinding.
    QStringList nullPath;

    QByteArray assemble() const {
        // Sized by the count and the table position themselves, not the largest
        // index and offset: Apple's reader insists on exactly that.
        const int referenceWidth = byteWidth(quint64(m_objects.size()));
        qsizetype objectBytes = 8 + m_leaves.size();
        for (const Object& object : m_objects) {
            if (object.kind != leafKind)
                objectBytes += markerSize(object) + qsizetype(object.length) * referenceWidth;
        }
        const quint64 offsetTableOffset = quint64(objectBytes);
        const int offsetWidth = byteWidth(offsetTableOffset);
        QByteArray out(objectBytes + qsizetype(m_objects.size()) * offsetWidth + trailerSize,
                       Qt::Uninitialized);
        char* const begin = out.data();
        char* cursor = begin;
        cursor = std::copy_n("bplist00", 8, cursor);
        char* offsetEntry = begin + objectBytes;
        for (const Object& object : m_objects) {
            offsetEntry = putBigEndian(offsetEntry, quint64(cursor - begin), offsetWidth);
            cursor = putObject(cursor, object, referenceWidth);
        }
        putTrailer(offsetEntry, offsetWidth, referenceWidth, offsetTableOffset);
        return out;
    }

private:
    static constexpr uchar leafKind = 0;
    static constexpr qsizetype trailerSize = 32;

    struct Object {
        uchar kind = leafKind; // or 0xA0 array, 0xD0 dictionary
        qsizetype start = 0;   // in m_leaves, or in m_references
        qsizetype length = 0;  // bytes of a leaf; references of a container (a dictionary's keys first)
    };

    std::optional<quint64> flattenLeaf(const Value& value) {
        if (value.isData())
            return flattenData(value);
        const ScalarKey key = scalarKey(value);
        if (const auto existing = m_scalarIndex.constFind(key); existing != m_scalarIndex.cend())
            return *existing;
        const quint64 index = addLeaf(encodeLeaf(value));
        m_scalarIndex.insert(key, index);
        return index;
    }

    quint64 flattenData(const Value& value) {
        const QByteArray data = *value.toData();
        if (const auto existing = m_dataIndex.constFind(data); existing != m_dataIndex.cend())
            return *existing;
        const quint64 index = addLeaf(encodeLeaf(value));
        m_dataIndex.insert(data, index);
        return index;
    }

    // Only strings encode as strings, so they are unique'd by their text,
    // which spares encoding every repeated key and value before the lookup.
    quint64 flattenString(const QString& string) {
        const auto existing = m_stringIndex.constFind(string);
        if (existing != m_stringIndex.cend())
            return *existing;
        const qsizetype start = m_leaves.size();
        appendString(m_leaves, string);
        const quint64 index = addObject(Object{leafKind, start, m_leaves.size() - start});
        m_stringIndex.insert(string, index);
        return index;
    }

    quint64 addLeaf(const QByteArray& encoding) {
        const qsizetype start = m_leaves.size();
        m_leaves.append(encoding);
        return addObject(Object{leafKind, start, encoding.size()});
    }

    // The container's references are reserved before its contents are
    // flattened, which append their own behind them.
    qsizetype reserveReferences(qsizetype count) {
        const qsizetype start = qsizetype(m_references.size());
        m_references.resize(m_references.size() + size_t(count));
        return start;
    }

    std::optional<quint64> flattenArray(const Array& array) {
        const qsizetype start = reserveReferences(array.size());
        const quint64 index = addObject(Object{0xA0, start, array.size()});
        for (qsizetype i = 0; i < array.size(); ++i) {
            const auto element = flatten(array[i]);
            if (!element) {
                nullPath.prepend(QString::number(i));
                return std::nullopt;
            }
            m_references[size_t(start + i)] = *element;
        }
        return index;
    }

    std::optional<quint64> flattenDictionary(const Dictionary& dictionary) {
        const qsizetype count = dictionary.size();
        const qsizetype start = reserveReferences(2 * count);
        const quint64 index = addObject(Object{0xD0, start, 2 * count});
        qsizetype slot = start;
        for (auto it = dictionary.begin(); it != dictionary.end(); ++it)
            m_references[size_t(slot++)] = flattenString(it.key());
        for (auto it = dictionary.begin(); it != dictionary.end(); ++it) {
            const auto value = flatten(it.value());
            if (!value) {
                nullPath.prepend(it.key());
                return std::nullopt;
            }
            m_references[size_t(slot++)] = *value;
        }
        return index;
    }

    quint64 addObject(Object object) {
        m_objects.push_back(object);
        return quint64(m_objects.size() - 1);
    }

    static quint64 elementCount(const Object& object) {
        return quint64(object.kind == 0xD0 ? object.length / 2 : object.length);
    }

    static qsizetype markerSize(const Object& object) {
        const quint64 count = elementCount(object);
        return count < 0x0F ? 1 : 2 + byteWidth(count);
    }

    char* putObject(char* out, const Object& object, int referenceWidth) const {
        if (object.kind == leafKind)
            return std::copy_n(m_leaves.constData() + object.start, object.length, out);
        const quint64 count = elementCount(object);
        if (count < 0x0F) {
            *out++ = char(object.kind | count);
        } else {
            *out++ = char(object.kind | 0x0F);
            const int width = byteWidth(count);
            *out++ = char(0x10 | widthExponent(width));
            out = putBigEndian(out, count, width);
        }
        const qsizetype end = object.start + object.length;
        for (qsizetype i = object.start; i < end; ++i)
            out = putBigEndian(out, m_references[size_t(i)], referenceWidth);
        return out;
    }

    void putTrailer(char* out, int offsetWidth, int referenceWidth, quint64 offsetTableOffset) const {
        out = std::fill_n(out, 6, '\0'); // unused bytes and the sort version
        *out++ = char(offsetWidth);
        *out++ = char(referenceWidth);
        out = putBigEndian(out, quint64(m_objects.size()), 8);
        out = putBigEndian(out, 0, 8); // the root is always the first object
        putBigEndian(out, offsetTableOffset, 8);
    }

    std::vector<Object> m_objects;
    QByteArray m_leaves;
    std::vector<quint64> m_references;
    QHash<ScalarKey, quint64> m_scalarIndex;
    QHash<QByteArray, quint64> m_dataIndex;
    QHash<QString, quint64> m_stringIndex;
};

} // namespace

Expected<QByteArray, QString> BinaryWriter::write(const Value& root) {
    Encoder encoder;
    if (!encoder.flatten(root))
        return fail(QStringLiteral("a null value cannot be written to a binary property list (at /%1)")
                        .arg(encoder.nullPath.join(u'/')));
    return encoder.assemble();
}

} // namespace quorlin::plist
