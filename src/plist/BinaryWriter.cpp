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
    const bool isAscii =
        std::all_of(string.begin(), string.end(), [](QChar c) { return c.unicode() < 0x80; });
    if (isAscii) {
        appendMarker(out, 0x50, quint64(string.size()));
        out.append(string.toLatin1());
        return;
    }
    appendMarker(out, 0x60, quint64(string.size()));
    for (const QChar c : string)
        appendBigEndian(out, c.unicode(), 2);
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

// Lays the tree out as a list of objects, root first and each container
// before its contents, then writes them with references as small as the
// object count allows.
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
        QByteArray out("bplist00");
        std::vector<quint64> offsets;
        offsets.reserve(m_objects.size());
        for (const Object& object : m_objects) {
            offsets.push_back(quint64(out.size()));
            appendObject(out, object, referenceWidth);
        }
        const quint64 offsetTableOffset = quint64(out.size());
        const int offsetWidth = byteWidth(offsetTableOffset);
        for (const quint64 offset : offsets)
            appendBigEndian(out, offset, offsetWidth);
        appendTrailer(out, offsetWidth, referenceWidth, offsetTableOffset);
        return out;
    }

private:
    struct Object {
        QByteArray leaf;                 // the encoding, for anything but a container
        uchar containerKind = 0;         // 0xA0 array, 0xD0 dictionary
        std::vector<quint64> references; // a dictionary's keys first, then its values
    };

    std::optional<quint64> flattenLeaf(const Value& value) {
        QByteArray encoding = encodeLeaf(value);
        if (const auto existing = m_leafIndex.constFind(encoding); existing != m_leafIndex.cend())
            return *existing;
        const quint64 index = addObject(Object{encoding, 0, {}});
        m_leafIndex.insert(std::move(encoding), index);
        return index;
    }

    // Only strings encode as strings, so they are unique'd by their text,
    // which spares encoding every repeated key and value before the lookup.
    quint64 flattenString(const QString& string) {
        if (const auto existing = m_stringIndex.constFind(string); existing != m_stringIndex.cend())
            return *existing;
        QByteArray encoding;
        appendString(encoding, string);
        const quint64 index = addObject(Object{std::move(encoding), 0, {}});
        m_stringIndex.insert(string, index);
        return index;
    }

    std::optional<quint64> flattenArray(const Array& array) {
        const quint64 index = addObject(Object{{}, 0xA0, {}});
        std::vector<quint64> references;
        references.reserve(size_t(array.size()));
        for (qsizetype i = 0; i < array.size(); ++i) {
            const auto element = flatten(array[i]);
            if (!element) {
                nullPath.prepend(QString::number(i));
                return std::nullopt;
            }
            references.push_back(*element);
        }
        m_objects[index].references = std::move(references);
        return index;
    }

    std::optional<quint64> flattenDictionary(const Dictionary& dictionary) {
        const quint64 index = addObject(Object{{}, 0xD0, {}});
        std::vector<quint64> references;
        references.reserve(size_t(2 * dictionary.size()));
        for (auto it = dictionary.begin(); it != dictionary.end(); ++it)
            references.push_back(flattenString(it.key()));
        for (auto it = dictionary.begin(); it != dictionary.end(); ++it) {
            const auto value = flatten(it.value());
            if (!value) {
                nullPath.prepend(it.key());
                return std::nullopt;
            }
            references.push_back(*value);
        }
        m_objects[index].references = std::move(references);
        return index;
    }

    quint64 addObject(Object object) {
        m_objects.push_back(std::move(object));
        return quint64(m_objects.size() - 1);
    }

    static void appendObject(QByteArray& out, const Object& object, int referenceWidth) {
        if (!object.containerKind) {
            out.append(object.leaf);
            return;
        }
        const quint64 count =
            object.containerKind == 0xD0 ? object.references.size() / 2 : object.references.size();
        appendMarker(out, object.containerKind, count);
        for (const quint64 reference : object.references)
            appendBigEndian(out, reference, referenceWidth);
    }

    void appendTrailer(QByteArray& out, int offsetWidth, int referenceWidth,
                       quint64 offsetTableOffset) const {
        out.append(6, '\0'); // unused bytes and the sort version
        out.append(char(offsetWidth));
        out.append(char(referenceWidth));
        appendBigEndian(out, quint64(m_objects.size()), 8);
        appendBigEndian(out, 0, 8); // the root is always the first object
        appendBigEndian(out, offsetTableOffset, 8);
    }

    std::vector<Object> m_objects;
    QHash<QByteArray, quint64> m_leafIndex;
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
