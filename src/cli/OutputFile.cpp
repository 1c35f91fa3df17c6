#include "cli/OutputFile.h"

#include "documents/AtomicFileWriter.h"

namespace quorlin::cli {

Expected<bool, QString> OutputFile::write(const QString& path, const QByteArray& bytes) {
    // The editor's own way of saving, so the tool and the editor fail alike.
    if (const auto written = AtomicFileWriter().write(path, bytes); !written)
        return fail(written.error().words);
    return true;
}

} // namespace quorlin::cli
