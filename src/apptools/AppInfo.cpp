#include "apptools/AppInfo.h"

#include "plist/Utilities.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace quorlin::apptools {

namespace {

constexpr qint64 maximumInfoPlistSize = 8 * 1024 * 1024;

std::optional<plist::Dictionary> readList(const QString& path) {
    QFile file(path);
    if (!file.exists() || file.size() > maximumInfoPlistSize || !file.open(QIODevice::ReadOnly))
        return std::nullopt;
    auto dictionary = Utilities::getDictionaryFromPlistBytes(file.readAll());
    return dictionary ? std::optional<plist::Dictionary>(std::move(*dictionary)) : std::nullopt;
}

} // namespace

std::optional<AppInfo> AppInfo::read(const QString& path) {
    const QDir bundle(path);
    AppInfo app;
    const QString macOSList = bundle.filePath(QStringLiteral("Contents/Info.plist"));
    const QString iOSList = bundle.filePath(QStringLiteral("WrappedBundle/Info.plist"));
    app.kind = QFileInfo::exists(macOSList) ? Kind::macOS : Kind::iOS;
    const auto info = readList(app.kind == Kind::macOS ? macOSList : iOSList);
    if (!info)
        return std::nullopt;
    app.info = *info;
    // Wrapped apps name their executable by a placeholder the wrapper fills.
    QString name = app.info.string(QStringLiteral("CFBundleExecutable")).value_or(QString());
    if (name.isEmpty() || name == QLatin1String("WRAPPEDPRODUCTNAME"))
        name = QFileInfo(path).completeBaseName();
    app.executable = bundle.filePath(
        (app.kind == Kind::macOS ? QStringLiteral("Contents/MacOS/") : QStringLiteral("WrappedBundle/")) +
        name);
    return app;
}

} // namespace quorlin::apptools
