// Reads one input as a binary property list; whatever reads must write, and
// read back as the same tree.
#include "plist/BinaryReader.h"
#include "plist/BinaryWriter.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

using namespace quorlin::plist;

namespace {

// Stricter than operator== where it must be, looser where it cannot be:
// reals and dates compare by their bits, so NaN matches NaN and -0.0 does not
// match 0.0.
bool sameTree(const Value& a, const Value& b) {
    if (a.type() != b.type())
        return false;
    switch (a.type()) {
    case Value::Type::Real:
        return std::bit_cast<quint64>(*a.toReal()) == std::bit_cast<quint64>(*b.toReal());
    case Value::Type::Date:
        return std::bit_cast<quint64>(a.toDate()->secondsSinceReferenceDate) ==
               std::bit_cast<quint64>(b.toDate()->secondsSinceReferenceDate);
    case Value::Type::Array: {
        const Array& left = *a.array();
        const Array& right = *b.array();
        if (left.size() != right.size())
            return false;
        for (qsizetype i = 0; i < left.size(); ++i) {
            if (!sameTree(left[i], right[i]))
                return false;
        }
        return true;
    }
    case Value::Type::Dictionary: {
        const Dictionary& left = *a.dictionary();
        const Dictionary& right = *b.dictionary();
        if (left.keys() != right.keys())
            return false;
        for (auto it = left.begin(); it != left.end(); ++it) {
            if (!sameTree(it.value(), right.value(it.key())))
                return false;
        }
        return true;
    }
    default:
        return a == b;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char*>(data), qsizetype(size));
    const auto read = BinaryReader::read(bytes);
    if (!read)
        return 0;
    const auto written = BinaryWriter::write(*read);
    if (!written)
        std::abort();
    const auto reread = BinaryReader::read(*written);
    if (!reread || !sameTree(*read, *reread))
        std::abort();
    return 0;
}
