// Reads one input as a Mac icon set, as an app's icon file on disk is read.
#include "apptools/IcnsFile.h"

#include <cstddef>
#include <cstdint>

using namespace quorlin::apptools;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char*>(data), qsizetype(size));
    (void)IcnsFile::bestImage(bytes);
    return 0;
}
