// Reads any bytes as an online repository's index, as they come from the
// network; every path it yields is then judged fit for the store or not.
#include "supply/ManifestIndex.h"

#include <cstddef>
#include <cstdint>

using namespace quorlin;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char*>(data), qsizetype(size));
    const auto items = ManifestIndex::parse(bytes);
    if (!items)
        return 0;
    for (const IndexItem& item : *items)
        ManifestIndex::isSafePath(item.path);
    return 0;
}
