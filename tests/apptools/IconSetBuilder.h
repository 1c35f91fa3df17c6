#pragma once

#include "ProgramFiles.h"

#include <QBuffer>
#include <QImage>

namespace quorlin::test {

// A PNG of one colour, made here rather than committed.
inline QByteArray pngImage(int side) {
    QImage image(side, side, QImage::Format_ARGB32);
    image.fill(Qt::darkCyan);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

// An icon set as the Mac's tools write one: "icns", the whole length, then
// each chunk's four-letter type, its length with its header, its bytes.
inline QByteArray iconSet(const QList<std::pair<QByteArray, QByteArray>>& chunks) {
    QByteArray body;
    for (const auto& [type, bytes] : chunks)
        body += type + ProgramFiles::bigEndianWord(quint32(bytes.size() + 8)) + bytes;
    return QByteArrayLiteral("icns") + ProgramFiles::bigEndianWord(quint32(body.size() + 8)) + body;
}

} // namespace quorlin::test
