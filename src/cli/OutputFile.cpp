#include "cli/OutputFile.h"

#include <QFileInfo>
#include <QSaveFile>

namespace quorlin::cli {

Expected<bool, QString> OutputFile::write(const QString& path, const QByteArray& bytes) {
    const QFileInfo existing(path);
    const bool replaces = existing.exists();
    const QFileDevice::Permissions permissions = existing.permissions();
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return fail(file.errorString());
    if (file.write(bytes) != bytes.size()) {
        file.cancelWriting();
        return fail(file.errorString());
    }
    // The temporary file is made with the default mode; a rewrite must not
    // widen or narrow who may read the profile.
    if (replaces)
        file.setPermissions(permissions);
    if (!file.commit())
        return fail(file.errorString());
    return true;
}

} // namespace quorlin::cli
