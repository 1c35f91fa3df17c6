#include "apptools/MachOFile.h"

#include "apptools/BinaryStream.h"

#include <QtEndian>

#include <algorithm>

namespace quorlin::apptools {

namespace {

constexpr quint32 universalMagic = 0xCAFEBABE;
constexpr quint32 thin32BigEndian = 0xFEEDFACE;
constexpr quint32 thin64BigEndian = 0xFEEDFACF;
constexpr quint32 thin32LittleEndian = 0xCEFAEDFE;
constexpr quint32 thin64LittleEndian = 0xCFFAEDFE;

constexpr qint64 universalHeaderSize = 8;
constexpr qint64 universalEntrySize = 20;
// Far beyond any real file; keeps a forged count from costing anything.
constexpr quint32 maximumArchitectureCount = 256;
constexpr qint64 maximumLoadCommandsSize = 16 * 1024 * 1024;
constexpr qint64 maximumSignatureSize = 64 * 1024 * 1024;
constexpr quint32 loadCommandCodeSignature = 0x1D;

struct ThinHeader {
    bool bigEndian = false;
    qint64 size = 0; // of the mach_header, 28 or 32 bytes
};

std::optional<ThinHeader> thinHeader(quint32 magic) {
    switch (magic) {
    case thin32BigEndian:
        return ThinHeader{true, 28};
    case thin64BigEndian:
        return ThinHeader{true, 32};
    case thin32LittleEndian:
        return ThinHeader{false, 28};
    case thin64LittleEndian:
        return ThinHeader{false, 32};
    default:
        return std::nullopt;
    }
}

quint32 wordAt(const QByteArray& bytes, qint64 offset, bool bigEndian) {
    const char* data = bytes.constData() + offset;
    return bigEndian ? qFromBigEndian<quint32>(data) : qFromLittleEndian<quint32>(data);
}

// Slices must lie after the table, inside the file, and apart from each other.
bool slicesHoldTogether(std::vector<MachOSlice> slices, qint64 tableEnd, qint64 fileSize) {
    std::sort(slices.begin(), slices.end(), [](const auto& a, const auto& b) { return a.offset < b.offset; });
    qint64 previousEnd = tableEnd;
    for (const MachOSlice& slice : slices) {
        if (slice.offset < previousEnd || slice.size > fileSize - slice.offset)
            return false;
        previousEnd = slice.offset + slice.size;
    }
    return true;
}

std::optional<std::vector<MachOSlice>> readUniversalTable(BinaryStream& stream) {
    const auto count = stream.readUInt32BigEndian();
    if (!count || *count > maximumArchitectureCount)
        return std::nullopt;
    const auto table = stream.read(qint64(*count) * universalEntrySize);
    if (!table)
        return std::nullopt;
    std::vector<MachOSlice> slices;
    for (quint32 index = 0; index < *count; ++index) {
        const qint64 at = qint64(index) * universalEntrySize;
        MachOSlice slice;
        slice.cpuType = wordAt(*table, at, true);
        slice.cpuSubtype = wordAt(*table, at + 4, true);
        slice.offset = wordAt(*table, at + 8, true);
        slice.size = wordAt(*table, at + 12, true);
        slice.architecture = MachOFile::architectureName(slice.cpuType);
        slices.push_back(slice);
    }
    const qint64 tableEnd = universalHeaderSize + qint64(*count) * universalEntrySize;
    if (!slicesHoldTogether(slices, tableEnd, stream.size()))
        return std::nullopt;
    return slices;
}

std::optional<QByteArray> findSignature(BinaryStream& stream, const MachOSlice& slice) {
    if (!stream.seek(slice.offset))
        return std::nullopt;
    const auto magic = stream.readUInt32BigEndian();
    const auto header = magic ? thinHeader(*magic) : std::nullopt;
    if (!header || slice.size < header->size || !stream.seek(slice.offset))
        return std::nullopt;
    const auto headerBytes = stream.read(header->size);
    if (!headerBytes)
        return std::nullopt;
    const quint32 commandCount = wordAt(*headerBytes, 16, header->bigEndian);
    const qint64 commandsSize = wordAt(*headerBytes, 20, header->bigEndian);
    if (commandsSize > std::min(maximumLoadCommandsSize, slice.size - header->size) ||
        qint64(commandCount) * 8 > commandsSize)
        return std::nullopt;
    const auto commands = stream.read(commandsSize);
    if (!commands)
        return std::nullopt;

    qint64 at = 0;
    for (quint32 index = 0; index < commandCount; ++index) {
        if (commandsSize - at < 8)
            return std::nullopt;
        const quint32 command = wordAt(*commands, at, header->bigEndian);
        const qint64 commandSize = wordAt(*commands, at + 4, header->bigEndian);
        if (commandSize < 8 || commandSize > commandsSize - at)
            return std::nullopt;
        if (command == loadCommandCodeSignature) {
            if (commandSize < 16)
                return std::nullopt;
            const qint64 dataOffset = wordAt(*commands, at + 8, header->bigEndian);
            const qint64 dataSize = wordAt(*commands, at + 12, header->bigEndian);
            if (dataSize > maximumSignatureSize || dataOffset > slice.size ||
                dataSize > slice.size - dataOffset || !stream.seek(slice.offset + dataOffset))
                return std::nullopt;
            const auto signature = stream.read(dataSize);
            return signature ? std::optional<QByteArray>(*signature) : std::nullopt;
        }
        at += commandSize;
    }
    return std::nullopt;
}

} // namespace

QString MachOFile::architectureName(quint32 cpuType) {
    switch (cpuType) {
    case 7:
        return QStringLiteral("i386");
    case 12:
        return QStringLiteral("arm");
    case 18:
        return QStringLiteral("ppc");
    case 0x01000007:
        return QStringLiteral("x86_64");
    case 0x0100000C:
        return QStringLiteral("arm64");
    default:
        return QStringLiteral("<unknown>");
    }
}

std::optional<MachOFile> MachOFile::read(const QString& path) {
    auto stream = BinaryStream::open(path);
    if (!stream)
        return std::nullopt;
    return read(*stream);
}

std::optional<MachOFile> MachOFile::read(BinaryStream& stream) {
    const auto magic = stream.readUInt32BigEndian();
    if (!magic)
        return std::nullopt;

    MachOFile file;
    file.m_path = stream.path();
    if (*magic == universalMagic) {
        auto slices = readUniversalTable(stream);
        if (!slices)
            return std::nullopt;
        file.m_isUniversal = true;
        file.m_slices = std::move(*slices);
        return file;
    }
    const auto header = thinHeader(*magic);
    if (!header)
        return std::nullopt;
    const auto cpuType = header->bigEndian ? stream.readUInt32BigEndian() : stream.readUInt32LittleEndian();
    const auto cpuSubtype =
        header->bigEndian ? stream.readUInt32BigEndian() : stream.readUInt32LittleEndian();
    if (!cpuType || !cpuSubtype)
        return std::nullopt;
    file.m_slices.push_back({*cpuType, *cpuSubtype, 0, stream.size(), architectureName(*cpuType)});
    return file;
}

QStringList MachOFile::architectures() const {
    QStringList names;
    for (const MachOSlice& slice : m_slices)
        names << slice.architecture;
    return names;
}

std::optional<MachOSlice> MachOFile::preferredSlice() const {
    for (const char* name : {"arm64", "x86_64"}) {
        const auto found = std::find_if(m_slices.begin(), m_slices.end(), [name](const MachOSlice& slice) {
            return slice.architecture == QLatin1String(name);
        });
        if (found != m_slices.end())
            return *found;
    }
    if (m_slices.empty())
        return std::nullopt;
    return m_slices.front();
}

std::optional<QByteArray> MachOFile::codeSignature(const MachOSlice& slice) const {
    auto stream = BinaryStream::open(m_path);
    if (!stream)
        return std::nullopt;
    return codeSignature(*stream, slice);
}

std::optional<QByteArray> MachOFile::codeSignature(BinaryStream& stream, const MachOSlice& slice) {
    return findSignature(stream, slice);
}

} // namespace quorlin::apptools
