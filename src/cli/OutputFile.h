#pragma once

#include "plist/Expected.h"

#include <QByteArray>
#include <QString>

namespace quorlin::cli {

// Writing the files a command produces.
class OutputFile {
public:
    // Replaces the file whole or not at all; an existing file keeps its
    // permissions. The error is the reason alone.
    static Expected<bool, QString> write(const QString& path, const QByteArray& bytes);
};

} // namespace quorlin::cli
