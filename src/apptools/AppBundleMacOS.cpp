#include "apptools/AppBundleMacOS.h"

#include "plist/Utilities.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace quorlin::apptools {

namespace {

// Real information lists are a few kilobytes; a hostile one is not read.
constexpr qint64 maximumInfoPlistSize = 8 * 1024 * 1024;

} // namespace

std::optional<AppBundleMacOS::Contents> AppBundleMacOS::readContents(const QString& path,
                                                                     const QString& infoLocation,
                                                                     const QString& executablePrefix) {
    const QFileInfo bundle(path);
    if (bundle.suffix() != QLatin1String("app") || !bundle.isDir())
        return std::nullopt;
    const QDir folder(path);
    QFile infoFile(folder.filePath(infoLocation));
    if (infoFile.size() > maximumInfoPlistSize || !infoFile.open(QIODevice::ReadOnly))
        return std::nullopt;
    auto info = Utilities::getDictionaryFromPlistBytes(infoFile.readAll());
    if (!info)
        return std::nullopt;
    const auto executableName = info->string(QStringLiteral("CFBundleExecutable"));
    if (!executableName || executableName->isEmpty())
        return std::nullopt;
    const QString executable = folder.filePath(executablePrefix + *executableName);
    if (!QFileInfo::exists(executable))
        return std::nullopt;
    return Contents{executable, std::move(*info)};
}

std::unique_ptr<AppBundle> AppBundleMacOS::make(const QString& path) {
    auto contents =
        readContents(path, QStringLiteral("Contents/Info.plist"), QStringLiteral("Contents/MacOS/"));
    if (!contents)
        return nullptr;
    return std::unique_ptr<AppBundle>(
        new AppBundleMacOS(path, std::move(contents->executable), std::move(contents->infoPlist)));
}

std::optional<QString> AppBundleMacOS::minimumOSVersion() const {
    return infoPlist().string(QStringLiteral("LSMinimumSystemVersion"));
}

std::optional<QString> AppBundleMacOS::icon() const {
    auto name = infoPlist().string(QStringLiteral("CFBundleIconFile"));
    if (!name || name->isEmpty())
        return std::nullopt;
    if (QFileInfo(*name).suffix().isEmpty())
        *name += QLatin1String(".icns");
    const QString file = QDir(url()).filePath(QStringLiteral("Contents/Resources/") + *name);
    if (!QFileInfo(file).isFile())
        return std::nullopt;
    return file;
}

} // namespace quorlin::apptools
