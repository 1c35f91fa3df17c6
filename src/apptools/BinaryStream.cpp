#include "apptools/BinaryStream.h"

#include <QFile>
#include <QFileInfo>
#include <QtEndian>

namespace quorlin::apptools {

namespace {

BinaryStreamError readError(const QString& path, qint64 wanted, qint64 offset) {
    return {BinaryStreamError::Kind::ReadError,
            QStringLiteral("%1: %2 bytes at offset %3 lie past the end of the file")
                .arg(path)
                .arg(wanted)
                .arg(offset)};
}

} // namespace

BinaryStream::BinaryStream(QString path, std::unique_ptr<QIODevice> device)
    : m_path(std::move(path))
    , m_file(std::move(device))
    , m_size(m_file->size()) {}

BinaryStream BinaryStream::overDevice(std::unique_ptr<QIODevice> device, const QString& name) {
    return BinaryStream(name, std::move(device));
}

BinaryStream::Result<BinaryStream> BinaryStream::open(const QString& path) {
    const QFileInfo info(path);
    if (!info.exists())
        return fail(BinaryStreamError{BinaryStreamError::Kind::FileDoesNotExist, path});
    if (info.isDir())
        return fail(BinaryStreamError{BinaryStreamError::Kind::FileIsADirectory, path});
    auto file = std::make_unique<QFile>(path);
    if (!file->open(QIODevice::ReadOnly))
        return fail(BinaryStreamError{BinaryStreamError::Kind::FileIsNotReadable, path});
    return BinaryStream(path, std::move(file));
}

BinaryStream::Result<bool> BinaryStream::seek(qint64 offset) {
    if (offset < 0 || offset > m_size || !m_file->seek(offset))
        return fail(readError(m_path, 0, offset));
    return true;
}

BinaryStream::Result<QByteArray> BinaryStream::read(qint64 count) {
    const qint64 offset = position();
    // Checked before allocating: a count taken from the file may be absurd.
    if (count < 0 || count > m_size - offset)
        return fail(readError(m_path, count, offset));
    QByteArray bytes = m_file->read(count);
    if (bytes.size() != count)
        return fail(readError(m_path, count, offset));
    return bytes;
}

template <typename T>
BinaryStream::Result<T> BinaryStream::readInteger(bool bigEndian) {
    auto bytes = read(sizeof(T));
    if (!bytes)
        return fail(bytes.error());
    return bigEndian ? qFromBigEndian<T>(bytes->constData()) : qFromLittleEndian<T>(bytes->constData());
}

BinaryStream::Result<quint16> BinaryStream::readUInt16BigEndian() {
    return readInteger<quint16>(true);
}

BinaryStream::Result<quint16> BinaryStream::readUInt16LittleEndian() {
    return readInteger<quint16>(false);
}

BinaryStream::Result<quint32> BinaryStream::readUInt32BigEndian() {
    return readInteger<quint32>(true);
}

BinaryStream::Result<quint32> BinaryStream::readUInt32LittleEndian() {
    return readInteger<quint32>(false);
}

BinaryStream::Result<quint64> BinaryStream::readUInt64BigEndian() {
    return readInteger<quint64>(true);
}

BinaryStream::Result<quint64> BinaryStream::readUInt64LittleEndian() {
    return readInteger<quint64>(false);
}

BinaryStream::Result<double> BinaryStream::readFixedPoint(int byteCount) {
    if (byteCount == 2) {
        auto raw = readUInt16BigEndian();
        if (!raw)
            return fail(raw.error());
        return double(qint16(*raw)) / 256.0;
    }
    if (byteCount == 4) {
        auto raw = readUInt32BigEndian();
        if (!raw)
            return fail(raw.error());
        return double(qint32(*raw)) / 65536.0;
    }
    return fail(BinaryStreamError{BinaryStreamError::Kind::InvalidFixedFloatingPointFormat,
                                  QStringLiteral("a fixed-point field of %1 bytes").arg(byteCount)});
}

} // namespace quorlin::apptools
