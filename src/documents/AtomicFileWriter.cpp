#include "documents/AtomicFileWriter.h"

#include "documents/DocumentErrorWords.h"

#include <QFile>
#include <QSaveFile>

namespace quorlin {

namespace {

DocumentError failureOf(const QSaveFile& file) {
    return DocumentError::fileFailed(int(file.error()), file.errorString());
}

} // namespace

Expected<bool, DocumentError> AtomicFileWriter::write(const QString& filePath,
                                                      const QByteArray& bytes) const {
    // Read before the temporary file exists beside it.
    const bool replacesFile = QFile::exists(filePath);
    const QFileDevice::Permissions permissions = QFile::permissions(filePath);

    QSaveFile file(filePath);
    if (!file.open(QIODevice::WriteOnly))
        return fail(failureOf(file));
    if (file.write(bytes) != bytes.size()) {
        const DocumentError error = failureOf(file);
        file.cancelWriting();
        return fail(error);
    }
    if (replacesFile && !file.setPermissions(permissions)) {
        const DocumentError error = failureOf(file);
        file.cancelWriting();
        return fail(error);
    }
    if (m_gate && !m_gate(filePath)) {
        file.cancelWriting();
        return fail(
            DocumentError::fileFailed(int(QFileDevice::AbortError), DocumentErrorWords::saveInterrupted));
    }
    if (!file.commit())
        return fail(failureOf(file));
    return true;
}

} // namespace quorlin
