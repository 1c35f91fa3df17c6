#pragma once

#include "documents/DocumentError.h"
#include "plist/Expected.h"

#include <QByteArray>
#include <QString>

#include <functional>

namespace quorlin {

// Writes a file all at once: the bytes go to a temporary file beside it,
// which replaces the file only when complete, so an interrupted save leaves
// the previous file as it was. A file that exists keeps its permissions.
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
