// Reads one input as an OpenStep property list; what reads is only strings,
// data, arrays and dictionaries, and must survive the binary codec unchanged.
#include "plist/BinaryReader.h"
#include "plist/BinaryWriter.h"
#include "plist/OpenStepReader.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

using namespace quorlin::plist;

namespace {

bool holdsOnlyOpenStepClasses(const Value& value) {
    switch (value.type()) {
    case Value::Type::String:
    case Value::Type::Data:
        return true;
    case Value::Type::Array:
        for (const Value& element : *value.array()) {
            if (!holdsOnlyOpenStepClasses(element))
                return false;
        }
        return true;
    case Value::Type::Dictionary:
        for (const Value& element : *value.dictionary()) {
            if (!holdsOnlyOpenStepClasses(element))
                return false;
        }
        return true;
    default:
        return false;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char*>(data), qsizetype(size));
    const auto read = OpenStepReader::read(bytes);
    if (!read)
        return 0;
    if (!holdsOnlyOpenStepClasses(*read))
        std::abort();
    const auto written = BinaryWriter::write(*read);
    if (!written)
        std::abort();
    const auto reread = BinaryReader::read(*written);
    if (!reread || !(*reread == *read))
        std::abort();
    return 0;
}
