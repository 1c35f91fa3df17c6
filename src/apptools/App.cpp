#include "apptools/App.h"

#include "apptools/AppInfo.h"
#include "apptools/MachOFile.h"

#include <QFileInfo>

namespace quorlin::apptools {

App::ArchitectureLabel App::labelFor(const QStringList& architectures, bool isIOS) {
    const auto has = [&architectures](const char* name) {
        return architectures.contains(QLatin1String(name));
    };
    const QString iOSSuffix = isIOS ? QStringLiteral(" (iOS)") : QString();
    if (architectures.size() == 1) {
        if (has("arm64"))
            return {QStringLiteral("Apple") + iOSSuffix, true};
        if (has("x86_64"))
            return {QStringLiteral("Intel 64"), false};
        if (has("i386"))
            return {QStringLiteral("Intel 32"), false};
        if (has("ppc"))
            return {QStringLiteral("PowerPC"), false};
        return {QStringLiteral("Unknown"), false};
    }
    if (has("arm64"))
        return {QStringLiteral("Universal") + iOSSuffix, true};
    if (has("ppc") && has("i386") && has("x86_64"))
        return {QStringLiteral("PowerPC/Intel 32/64"), false};
    if (has("ppc") && has("x86_64"))
        return {QStringLiteral("PowerPC/Intel 64"), false};
    if (has("ppc") && has("i386"))
        return {QStringLiteral("PowerPC/Intel 32"), false};
    if (has("i386") && has("x86_64"))
        return {QStringLiteral("Intel 32/64"), false};
    return {QStringLiteral("Unknown"), false};
}

std::optional<App> App::read(const QString& path) {
    if (!QFileInfo(path).isDir())
        return std::nullopt;
    const auto info = AppInfo::read(path);
    if (!info || !QFileInfo(info->executable).isFile())
        return std::nullopt;
    App app;
    app.path = path;
    app.name = QFileInfo(path).completeBaseName();
    app.version = info->info.string(QStringLiteral("CFBundleShortVersionString"));
    app.bundleID = info->info.string(QStringLiteral("CFBundleIdentifier"));
    if (const auto file = MachOFile::read(info->executable))
        app.architectures = file->architectures();
    const ArchitectureLabel label = labelFor(app.architectures, info->kind == AppInfo::Kind::iOS);
    app.architecture = label.architecture;
    app.isAppleSiliconReady = label.isAppleSiliconReady;
    return app;
}

} // namespace quorlin::apptools
