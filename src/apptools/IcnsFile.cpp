#include "apptools/IcnsFile.h"

#include <QBuffer>
#include <QFile>
#include <QtEndian>

#include <algorithm>

namespace quorlin::apptools {

namespace {

constexpr qint64 headerSize = 8;
const QByteArray iconSetMagic = QByteArrayLiteral("icns");
const QByteArray pngSignature = QByteArrayLiteral("\x89PNG\r\n\x1a\n");
// The signature, the IHDR chunk's length and type, then its width.
constexpr qint64 pngWidthOffset = 16;

std::optional<quint32> bigEndianWord(const QByteArray& bytes, qsizetype at) {
    if (at < 0 || bytes.size() < at + 4)
        return std::nullopt;
    return qFromBigEndian<quint32>(bytes.constData() + at);
}

} // namespace

bool IcnsFile::isIconSet(const QByteArray& firstBytes) {
    return firstBytes.startsWith(iconSetMagic);
}

std::optional<QByteArray> IcnsFile::bestImage(QIODevice& device) {
    if (!device.seek(0))
        return std::nullopt;
    const QByteArray header = device.read(headerSize);
    const auto declared = bigEndianWord(header, 4);
    if (!isIconSet(header) || !declared)
        return std::nullopt;
    // A set that claims more than the file holds ends where the file does.
    const qint64 end = std::min<qint64>(*declared, device.size());
    std::optional<Candidate> best;
    for (qint64 offset = headerSize; offset + headerSize <= end;) {
        if (!device.seek(offset))
            return std::nullopt;
        const auto length = bigEndianWord(device.read(headerSize), 4);
        if (!length || *length < headerSize || *length > end - offset)
            break;
        const auto candidate = pngCandidate(device, offset + headerSize, *length - headerSize);
        if (candidate && (!best || candidate->width > best->width))
            best = candidate;
        offset += *length;
    }
    if (!best || !device.seek(best->offset))
        return std::nullopt;
    QByteArray image = device.read(best->size);
    if (image.size() != best->size)
        return std::nullopt;
    return image;
}

std::optional<QByteArray> IcnsFile::bestImage(const QByteArray& bytes) {
    QByteArray copy = bytes;
    QBuffer buffer(&copy);
    if (!buffer.open(QIODevice::ReadOnly))
        return std::nullopt;
    return bestImage(buffer);
}

std::optional<IcnsFile::Candidate> IcnsFile::pngCandidate(QIODevice& device, qint64 offset, qint64 size) {
    if (size <= pngWidthOffset + 4 || size > maximumImageSize || !device.seek(offset))
        return std::nullopt;
    const QByteArray start = device.read(pngWidthOffset + 4);
    if (!start.startsWith(pngSignature))
        return std::nullopt;
    const auto width = bigEndianWord(start, pngWidthOffset);
    return width ? std::optional<Candidate>(Candidate{offset, size, *width}) : std::nullopt;
}

std::optional<QByteArray> IcnsFile::iconImage(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    if (isIconSet(file.peek(iconSetMagic.size())))
        return bestImage(file);
    if (file.size() > maximumImageSize)
        return std::nullopt;
    return file.readAll();
}

} // namespace quorlin::apptools
