#pragma once

#include "plist/Expected.h"

#include <QByteArray>
#include <QIODevice>
#include <QString>

#include <memory>

namespace quorlin::apptools {

// Why a program file couldn't be read; each case carries the path or a text.
struct BinaryStreamError {
    enum class Kind {
        FileDoesNotExist,
        FileIsADirectory,
        FileIsNotReadable,
        ReadError,
        InvalidFixedFloatingPointFormat,
    };
    Kind kind = Kind::ReadError;
    QString detail;
};

// A reader of a file's bytes with explicit byte order. It never holds more
// of the file than the caller asks for, and every read that would pass the
// end of the file fails instead of giving fewer bytes, so a hostile file
// can't make it read past what it has or allocate what it promises.
class BinaryStream {
public:
    template <typename T>
    using Result = Expected<T, BinaryStreamError>;

    // Tested in this order: existence, then directory, then opening.
    static Result<BinaryStream> open(const QString& path);
    // Over an open random-access device, such as bytes in memory; the name
    // stands for the path in errors.
    static BinaryStream overDevice(std::unique_ptr<QIODevice> device, const QString& name);

    qint64 size() const { return m_size; }
    qint64 position() const { return m_file->pos(); }
    const QString& path() const { return m_path; }

    // Moves to an absolute offset, which must lie within the file.
    Result<bool> seek(qint64 offset);
    // Exactly count bytes, or ReadError.
    Result<QByteArray> read(qint64 count);

    Result<quint16> readUInt16BigEndian();
    Result<quint16> readUInt16LittleEndian();
    Result<quint32> readUInt32BigEndian();
    Result<quint32> readUInt32LittleEndian();
    Result<quint64> readUInt64BigEndian();
    Result<quint64> readUInt64LittleEndian();
    // A signed fixed-point number of 2 (8.8) or 4 (16.16) bytes, big-endian.
    Result<double> readFixedPoint(int byteCount);

private:
    BinaryStream(QString path, std::unique_ptr<QIODevice> device);
    template <typename T>
    Result<T> readInteger(bool bigEndian);

    QString m_path;
    std::unique_ptr<QIODevice> m_file;
    qint64 m_size = 0;
};

} // namespace quorlin::apptools
