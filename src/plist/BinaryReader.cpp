#include "plist/BinaryReader.h"

#include <algorithm>
#include <bit>
#include <map>
#include <optional>
#include <vector>

namespace quorlin::plist {

namespace {

constexpr qint64 headerSize = 8;
constexpr qint64 trailerSize = 32;

// A file may reference one object from many places, and decoding caches by
// object so that costs nothing; but a few hundred bytes can then stand for a
// tree of 2^60 nodes that every later walk would have to visit. The tree a
// file unfolds into is therefore held to a few times what its reference slots
// could spell out without sharing (a tree has one node per slot, plus the
// root), with a floor so that small files may share a little.
constexpr quint64 expansionFactor = 4;
constexpr quint64 minimumExpansionBudget = quint64(1) << 16;

struct Trailer {
    int offsetSize = 0;
    int referenceSize = 0;
    quint64 objectCount = 0;
    quint64 topObject = 0;
    quint64 offsetTableOffset = 0;
};

quint64 readBigEndian(const uchar* bytes, int size) {
    quint64 value = 0;
    for (int i = 0; i < size; ++i)
        value = (value << 8) | bytes[i];
    return value;
}

bool fitsIn(int size, quint64 value) {
    return size >= 8 || value < (quint64(1) << (8 * size));
}

ParseError errorAt(const char* reason, qint64 offset) {
    return ParseError{QString::fromLatin1(reason), -1, offset};
}

std::optional<ParseError> validateTrailer(const Trailer& trailer, qint64 fileSize) {
    const qint64 trailerStart = fileSize - trailerSize;
    if (trailer.offsetSize < 1 || trailer.offsetSize > 8)
        return errorAt("offset size in the trailer is not between 1 and 8 bytes", trailerStart + 6);
    if (trailer.referenceSize < 1 || trailer.referenceSize > 8)
        return errorAt("object reference size in the trailer is not between 1 and 8 bytes", trailerStart + 7);
    if (trailer.objectCount == 0)
        return errorAt("trailer declares no objects", trailerStart + 8);
    if (trailer.topObject >= trailer.objectCount)
        return errorAt("top object is not one of the declared objects", trailerStart + 16);
    if (trailer.offsetTableOffset <= quint64(headerSize) || trailer.offsetTableOffset > quint64(trailerStart))
        return errorAt("offset table does not lie between the objects and the trailer", trailerStart + 24);
    const quint64 tableRoom = quint64(trailerStart) - trailer.offsetTableOffset;
    if (trailer.objectCount > tableRoom / quint64(trailer.offsetSize))
        return errorAt("offset table runs into the trailer", qint64(trailer.offsetTableOffset));
    if (!fitsIn(trailer.referenceSize, trailer.objectCount - 1))
        return errorAt("object reference size is too small for the object count", trailerStart + 7);
    if (!fitsIn(trailer.offsetSize, trailer.offsetTableOffset - 1))
        return errorAt("offset size is too small for the offset table position", trailerStart + 6);
    return std::nullopt;
}

// Decodes the objects of one validated file. Internal steps report failure by
// returning nothing after recording the first error.
class Decoder {
public:
    Decoder(const QByteArray& bytes, const Trailer& trailer, const ReadLimits& limits)
        : m_data(reinterpret_cast<const uchar*>(bytes.constData()))
        , m_trailer(trailer)
        , m_objectsEnd(qint64(trailer.offsetTableOffset))
        , m_onPath(trailer.objectCount, false)
        , m_slots(trailer.objectCount, 0)
        , m_maxDepth(limits.maxDepth) {
        const quint64 referenceSlots = quint64(m_objectsEnd - headerSize) / quint64(trailer.referenceSize);
        m_expansionBudget = std::max(minimumExpansionBudget, expansionFactor * (referenceSlots + 1));
        countReferences();
    }

    Expected<Value, ParseError> decodeTop(qint64 topObjectField) {
        const auto top = decodeObject(m_trailer.topObject, 0, topObjectField);
        if (!top)
            return fail(*m_error);
        return top->value;
    }

private:
    struct Decoded {
        Value value;
        quint64 expandedSize = 1; // nodes of the tree this object unfolds into
        int height = 0;           // containers on the longest path down from here
    };

    // What m_slots holds for an object before it is decoded: how often it
    // is referenced, counting stopping at "more than once". Past these, the
    // decoded object lies in m_shared at slot - firstSharedSlot.
    enum : quint32 { unreferenced = 0, referencedOnce = 1, referencedMore = 2, firstSharedSlot = 3 };

    // Only objects referenced more than once are kept once decoded: the rest
    // are met once, and keeping them would double what a read costs.
    // Malformed objects are passed over here; decoding reports them if reached.
    // Many offsets may name one large container, so counting stops at the
    // expansion budget: what goes uncounted is decoded again where met, and
    // the budget bounds that.
    void countReferences() {
        quint64 counted = 0;
        for (quint64 index = 0; index < m_trailer.objectCount && counted <= m_expansionBudget; ++index) {
            const qint64 entry = qint64(m_trailer.offsetTableOffset + index * quint64(m_trailer.offsetSize));
            const quint64 offset = readBigEndian(m_data + entry, m_trailer.offsetSize);
            if (offset < quint64(headerSize) || offset >= quint64(m_objectsEnd))
                continue;
            const uchar marker = m_data[offset];
            const int kind = marker >> 4;
            if (kind != 0xA && kind != 0xC && kind != 0xD)
                continue;
            qint64 start = qint64(offset);
            const auto count =
                readCount(marker, start, quint64(m_trailer.referenceSize) * (kind == 0xD ? 2 : 1));
            const quint64 slots = count ? *count * (kind == 0xD ? 2 : 1) : 0;
            counted += slots;
            for (quint64 slot = 0; slot < slots; ++slot) {
                const quint64 target =
                    readBigEndian(m_data + referenceOffset(start, slot), m_trailer.referenceSize);
                if (target < m_trailer.objectCount && m_slots[target] < referencedMore)
                    ++m_slots[target];
            }
        }
        m_error.reset();
    }

    std::optional<Decoded> decodeObject(quint64 index, int depth, qint64 referencedAt) {
        // A shared object was decoded under a shallower parent, perhaps; its
        // height keeps a chain of shared containers within the nesting limit.
        if (m_slots[index] >= firstSharedSlot) {
            const Decoded& shared = m_shared[m_slots[index] - firstSharedSlot];
            if (depth + shared.height > m_maxDepth)
                return failAt("arrays and dictionaries are nested too deeply", referencedAt);
            return shared;
        }
        if (m_onPath[index])
            return failAt("object refers to itself through its own contents", referencedAt);
        const auto offset = objectOffset(index);
        if (!offset)
            return std::nullopt;
        m_onPath[index] = true;
        auto decoded = decodeAt(*offset, depth);
        m_onPath[index] = false;
        if (decoded && m_slots[index] == referencedMore) {
            m_slots[index] = quint32(firstSharedSlot + m_shared.size());
            m_shared.push_back(*decoded);
        }
        return decoded;
    }

    std::optional<qint64> objectOffset(quint64 index) {
        const qint64 entry = qint64(m_trailer.offsetTableOffset + index * quint64(m_trailer.offsetSize));
        const quint64 offset = readBigEndian(m_data + entry, m_trailer.offsetSize);
        if (offset < quint64(headerSize) || offset >= quint64(m_objectsEnd))
            return failAt("object offset points outside the object area", entry);
        return qint64(offset);
    }

    std::optional<Decoded> decodeAt(qint64 offset, int depth) {
        const uchar marker = m_data[offset];
        switch (marker >> 4) {
        case 0x0:
            return decodeSimple(marker, offset);
        case 0x1:
            return decodeInteger(marker, offset);
        case 0x2:
            return decodeReal(marker, offset);
        case 0x3:
            return decodeDate(marker, offset);
        case 0x4:
            return decodeData(marker, offset);
        case 0x5:
            return decodeAsciiString(marker, offset);
        case 0x6:
            return decodeUtf16String(marker, offset);
        case 0x8:
            return decodeUid(marker, offset);
        case 0xA:
        case 0xC: // a set has no order to keep; it reads as an array
            return decodeArray(marker, offset, depth);
        case 0xD:
            return decodeDictionary(marker, offset, depth);
        default:
            return failAt("unknown object marker", offset);
        }
    }

    std::optional<Decoded> decodeSimple(uchar marker, qint64 offset) {
        switch (marker) {
        case 0x08:
            return Decoded{Value(false)};
        case 0x09:
            return Decoded{Value(true)};
        case 0x00:
            // A null has no place in a property-list tree: it could not be written back.
            return failAt("null object is not a property-list value", offset);
        case 0x0F:
            return failAt("fill byte where an object was expected", offset);
        default:
            return failAt("unknown object marker", offset);
        }
    }

    std::optional<Decoded> decodeInteger(uchar marker, qint64 offset) {
        const int sizeExponent = marker & 0x0F;
        if (sizeExponent > 4)
            return failAt("integer is not 1, 2, 4, 8 or 16 bytes long", offset);
        const int size = 1 << sizeExponent;
        if (!hasBytes(offset + 1, quint64(size)))
            return failAt("integer runs past the object area", offset);
        const uchar* bytes = m_data + offset + 1;
        if (size < 8)
            return Decoded{Value(qint64(readBigEndian(bytes, size)))};
        if (size == 8)
            return Decoded{Value(std::bit_cast<qint64>(readBigEndian(bytes, 8)))};
        return decodeWideInteger(bytes, offset);
    }

    // Apple writes unsigned values above INT64_MAX as 128-bit integers; the
    // high half is then zero (or all ones for a negative value).
    std::optional<Decoded> decodeWideInteger(const uchar* bytes, qint64 offset) {
        const quint64 high = readBigEndian(bytes, 8);
        const quint64 low = readBigEndian(bytes + 8, 8);
        if (high == 0)
            return Decoded{Value::fromUnsigned(low)};
        if (high == ~quint64(0) && std::bit_cast<qint64>(low) < 0)
            return Decoded{Value(std::bit_cast<qint64>(low))};
        return failAt("16-byte integer does not fit in 64 bits", offset);
    }

    std::optional<Decoded> decodeReal(uchar marker, qint64 offset) {
        const int size = 1 << (marker & 0x0F);
        if (size != 4 && size != 8)
            return failAt("real is not 4 or 8 bytes long", offset);
        if (!hasBytes(offset + 1, quint64(size)))
            return failAt("real runs past the object area", offset);
        const quint64 bits = readBigEndian(m_data + offset + 1, size);
        if (size == 4)
            return Decoded{Value(double(std::bit_cast<float>(quint32(bits))))};
        return Decoded{Value(std::bit_cast<double>(bits))};
    }

    std::optional<Decoded> decodeDate(uchar marker, qint64 offset) {
        if (marker != 0x33)
            return failAt("date is not an 8-byte real", offset);
        if (!hasBytes(offset + 1, 8))
            return failAt("date runs past the object area", offset);
        return Decoded{Value(Date{std::bit_cast<double>(readBigEndian(m_data + offset + 1, 8))})};
    }

    std::optional<Decoded> decodeData(uchar marker, qint64 offset) {
        qint64 start = offset;
        const auto length = readCount(marker, start, 1);
        if (!length)
            return std::nullopt;
        return Decoded{Value(QByteArray(reinterpret_cast<const char*>(m_data + start), qsizetype(*length)))};
    }

    std::optional<Decoded> decodeAsciiString(uchar marker, qint64 offset) {
        qint64 start = offset;
        const auto length = readCount(marker, start, 1);
        if (!length)
            return std::nullopt;
        const uchar* bytes = m_data + start;
        if (std::any_of(bytes, bytes + *length, [](uchar byte) { return byte >= 0x80; }))
            return failAt("ASCII string holds a byte above 127", offset);
        return Decoded{Value(QString::fromLatin1(reinterpret_cast<const char*>(bytes), qsizetype(*length)))};
    }

    // UTF-16 units are kept as they are, surrogate pairs and all.
    std::optional<Decoded> decodeUtf16String(uchar marker, qint64 offset) {
        qint64 start = offset;
        const auto length = readCount(marker, start, 2);
        if (!length)
            return std::nullopt;
        QString string(qsizetype(*length), Qt::Uninitialized);
        char16_t* units = reinterpret_cast<char16_t*>(string.data());
        for (quint64 i = 0; i < *length; ++i)
            units[i] = char16_t(readBigEndian(m_data + start + qint64(2 * i), 2));
        return Decoded{Value(string)};
    }

    std::optional<Decoded> decodeUid(uchar marker, qint64 offset) {
        const int size = (marker & 0x0F) + 1;
        if (size > 8)
            return failAt("UID is longer than 8 bytes", offset);
        if (!hasBytes(offset + 1, quint64(size)))
            return failAt("UID runs past the object area", offset);
        return Decoded{Value(Uid{readBigEndian(m_data + offset + 1, size)})};
    }

    std::optional<Decoded> decodeArray(uchar marker, qint64 offset, int depth) {
        if (!enterContainer(depth, offset))
            return std::nullopt;
        qint64 start = offset;
        const auto count = readCount(marker, start, quint64(m_trailer.referenceSize));
        if (!count)
            return std::nullopt;
        Array array;
        array.reserve(qsizetype(*count));
        Decoded result{Value(), 1, 1};
        for (quint64 i = 0; i < *count; ++i) {
            const auto element = decodeReference(start, i, depth + 1);
            if (!element || !addToExpandedSize(result, *element, offset))
                return std::nullopt;
            array.append(std::move(element->value));
        }
        result.value = Value(std::move(array));
        return result;
    }

    std::optional<Decoded> decodeDictionary(uchar marker, qint64 offset, int depth) {
        if (!enterContainer(depth, offset))
            return std::nullopt;
        qint64 start = offset;
        const auto count = readCount(marker, start, 2 * quint64(m_trailer.referenceSize));
        if (!count)
            return std::nullopt;
        // Built as a std::map and handed over whole, as the XML reader does.
        std::map<QString, Value> entries;
        Decoded result{Value(), 1, 1};
        for (quint64 i = 0; i < *count; ++i) {
            auto key = decodeReference(start, i, depth + 1);
            if (!key)
                return std::nullopt;
            if (!key->value.isString())
                return failAt("dictionary key is not a string", referenceOffset(start, i));
            auto value = decodeReference(start, *count + i, depth + 1);
            if (!value || !addToExpandedSize(result, *value, offset))
                return std::nullopt;
            // Keys mostly come sorted, so the hint makes insertion constant
            // time; a repeated key replaces the earlier value.
            entries.insert_or_assign(entries.end(), *key->value.toString(), std::move(value->value));
        }
        Dictionary dictionary;
        if (!entries.empty())
            dictionary.map() = Dictionary::Map(std::move(entries));
        result.value = Value(std::move(dictionary));
        return result;
    }

    bool enterContainer(int depth, qint64 offset) {
        if (depth < m_maxDepth)
            return true;
        failAt("arrays and dictionaries are nested too deeply", offset);
        return false;
    }

    std::optional<Decoded> decodeReference(qint64 referencesStart, quint64 slot, int depth) {
        const qint64 at = referenceOffset(referencesStart, slot);
        const quint64 index = readBigEndian(m_data + at, m_trailer.referenceSize);
        if (index >= m_trailer.objectCount)
            return failAt("object reference is out of range", at);
        return decodeObject(index, depth, at);
    }

    qint64 referenceOffset(qint64 referencesStart, quint64 slot) const {
        return referencesStart + qint64(slot * quint64(m_trailer.referenceSize));
    }

    bool addToExpandedSize(Decoded& container, const Decoded& element, qint64 offset) {
        container.height = std::max(container.height, element.height + 1);
        container.expandedSize += element.expandedSize;
        if (container.expandedSize <= m_expansionBudget)
            return true;
        failAt("shared objects unfold into a tree far larger than the file", offset);
        return false;
    }

    // The count of a data, string or container object, from the marker's low
    // nibble or the integer that follows it; `start` moves to the payload.
    // The payload must fit in the object area before anything is allocated.
    std::optional<quint64> readCount(uchar marker, qint64& start, quint64 bytesPerItem) {
        const qint64 offset = start;
        quint64 count = marker & 0x0F;
        start = offset + 1;
        if (count == 0x0F) {
            const auto extended = readExtendedCount(offset);
            if (!extended)
                return std::nullopt;
            count = *extended;
            start = offset + 2 + (qint64(1) << (m_data[offset + 1] & 0x0F));
        }
        const quint64 room = quint64(m_objectsEnd - start);
        if (count > room / bytesPerItem)
            return failAt("object is longer than the bytes that remain", offset);
        return count;
    }

    std::optional<quint64> readExtendedCount(qint64 offset) {
        if (!hasBytes(offset + 1, 1))
            return failAt("length marker runs past the object area", offset);
        const uchar lengthMarker = m_data[offset + 1];
        if ((lengthMarker >> 4) != 0x1 || (lengthMarker & 0x0F) > 3)
            return failAt("length is not an integer of 1, 2, 4 or 8 bytes", offset + 1);
        const int size = 1 << (lengthMarker & 0x0F);
        if (!hasBytes(offset + 2, quint64(size)))
            return failAt("length runs past the object area", offset + 1);
        const quint64 count = readBigEndian(m_data + offset + 2, size);
        if (size == 8 && std::bit_cast<qint64>(count) < 0)
            return failAt("length is negative", offset + 1);
        return count;
    }

    bool hasBytes(qint64 start, quint64 count) const {
        return start <= m_objectsEnd && count <= quint64(m_objectsEnd - start);
    }

    std::nullopt_t failAt(const char* reason, qint64 offset) {
        if (!m_error)
            m_error = errorAt(reason, offset);
        return std::nullopt;
    }

    const uchar* m_data;
    const Trailer m_trailer;
    const qint64 m_objectsEnd; // objects lie in [header, offset table)
    std::vector<bool> m_onPath;
    std::vector<quint32> m_slots;  // see firstSharedSlot
    std::vector<Decoded> m_shared; // objects referenced more than once, once decoded
    const int m_maxDepth;
    quint64 m_expansionBudget = 0;
    std::optional<ParseError> m_error;
};

} // namespace

Expected<Value, ParseError> BinaryReader::read(const QByteArray& bytes, const ReadLimits& limits) {
    if (!bytes.startsWith("bplist00") && !bytes.startsWith("bplist01"))
        return fail(errorAt("not a binary property list of version 00", 0));
    if (const auto tooLarge = sizeRefusal(bytes.size(), limits))
        return fail(*tooLarge);
    const qint64 size = bytes.size();
    if (size < headerSize + 1 + trailerSize)
        return fail(errorAt("too short for a binary property list", size));

    const auto* trailerBytes = reinterpret_cast<const uchar*>(bytes.constData()) + size - trailerSize;
    Trailer trailer;
    trailer.offsetSize = trailerBytes[6];
    trailer.referenceSize = trailerBytes[7];
    trailer.objectCount = readBigEndian(trailerBytes + 8, 8);
    trailer.topObject = readBigEndian(trailerBytes + 16, 8);
    trailer.offsetTableOffset = readBigEndian(trailerBytes + 24, 8);
    if (const auto invalid = validateTrailer(trailer, size))
        return fail(*invalid);

    return Decoder(bytes, trailer, limits).decodeTop(size - trailerSize + 16);
}

} // namespace quorlin::plist
