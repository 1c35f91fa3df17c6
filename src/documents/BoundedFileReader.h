#pragma once

#include "plist/Expected.h"

#include <QByteArray>
#include <QString>

namespace quorlin {

// Reads a whole file that a user named, refusing what would exhaust memory
// or never end: files larger than the limit, devices such as /dev/zero, and
// named pipes, which would wait for a writer. Errors are the reason alone.
class BoundedFileReader {
public:
    // Far above any profile or property list.
    static constexpr qint64 maximumSize = qint64(512) * 1024 * 1024;

    static Expected<QByteArray, QString> read(const QString& path);
    // A pipe or a file given as standard input, up to the same limit.
    static Expected<QByteArray, QString> readStandardInput();
};

} // namespace quorlin
