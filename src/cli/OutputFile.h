#pragma once

#include "plist/Expected.h"

#include <QByteArray>
#include <QString>

namespace quorlin::cli {

// Writing the files a command produces.
class OutputFile {
public:
    // Replaces the file whole or not at all, checked to the end: a write that
    // fails leaves the old file byte for byte. An existing file keeps its
    // permissions, owner and group. The error is the reason alone, in plain
    // words.
    static Expected<bool, QString> write(const QString& path, const QByteArray& bytes);
};

} // namespace quorlin::cli
