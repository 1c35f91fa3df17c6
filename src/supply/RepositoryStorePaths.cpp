#include "supply/RepositoryStorePaths.h"

#include <QDir>
#include <QStandardPaths>

namespace quorlin {

QString RepositoryStorePaths::storeRoot() {
    return QDir(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation))
        .filePath(QStringLiteral("manifest-repositories"));
}

} // namespace quorlin
