#pragma once

#include "documents/DocumentError.h"
#include "plist/Expected.h"

#include <QByteArray>
#include <QString>

#include <functional>

namespace quorlin {

// Writes a file all at once: the bytes go to a temporary file beside it,
// which replaces the file only when every byte is written, flushed to the
// disk and closed without error, so a save that fails (a full disk, a
// read-only folder) leaves the previous file byte for byte. A file that
// exists keeps its permissions, owner and group. A target that is no regular
// file (a device such as standard output, a pipe) has nothing to replace and
// is written directly, still checked to the end. Errors carry the system's
// reason in plain words.
class AtomicFileWriter {
public:
    // Asked once the bytes are written and before they replace the file;
    // false abandons the save. The one place where a test can break a save
    // between writing and committing.
    using CommitGate = std::function<bool(const QString& filePath)>;

    explicit AtomicFileWriter(CommitGate gate = {})
        : m_gate(std::move(gate)) {}

    Expected<bool, DocumentError> write(const QString& filePath, const QByteArray& bytes) const;

private:
    CommitGate m_gate;
};

} // namespace quorlin
