#include "apptools/AppBundleProgramFile.h"

#include "apptools/MachOFile.h"

#include <QFileInfo>

namespace quorlin::apptools {

std::unique_ptr<AppBundle> AppBundleProgramFile::make(const QString& path) {
    if (!QFileInfo(path).isFile() || !MachOFile::read(path))
        return nullptr;
    return std::unique_ptr<AppBundle>(new AppBundleProgramFile(path, path, {}));
}

std::optional<QString> AppBundleProgramFile::name() const {
    return QFileInfo(url()).fileName();
}

std::optional<QString> AppBundleProgramFile::bundleIdentifier() const {
    const CodeSignature* code = signature();
    if (!code)
        return std::nullopt;
    return code->identifier();
}

std::optional<qint64> AppBundleProgramFile::size() const {
    return QFileInfo(url()).size();
}

} // namespace quorlin::apptools
