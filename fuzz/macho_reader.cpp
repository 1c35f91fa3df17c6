// Reads one input as a program file: the architectures, then the embedded
// signature of every slice and what it says. Nothing may read past the input
// or allocate what a forged count promises.
#include "apptools/BinaryStream.h"
#include "apptools/CodeSignature.h"
#include "apptools/MachOFile.h"

#include <QBuffer>

#include <cstddef>
#include <cstdint>
#include <memory>

using namespace quorlin::apptools;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    auto buffer = std::make_unique<QBuffer>();
    buffer->setData(reinterpret_cast<const char*>(data), qsizetype(size));
    buffer->open(QIODevice::ReadOnly);
    BinaryStream stream = BinaryStream::overDevice(std::move(buffer), QStringLiteral("input"));
    const auto file = MachOFile::read(stream);
    if (!file)
        return 0;
    for (const MachOSlice& slice : file->slices()) {
        const auto blob = MachOFile::codeSignature(stream, slice);
        if (const auto signature = blob ? CodeSignature::parse(*blob) : std::nullopt) {
            (void)signature->designatedRequirement();
            (void)signature->developerName();
        }
    }
    return 0;
}
