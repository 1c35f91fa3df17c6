#pragma once

#include <QString>

namespace quorlin {

// A byte count as a file browser shows it: decimal units, whole kilobytes,
// one decimal for megabytes and two above ("Zero KB", "1 byte", "12 KB",
// "1.5 MB").
class ByteCountFormatter {
public:
    static QString fileStyle(qint64 bytes);
};

} // namespace quorlin
