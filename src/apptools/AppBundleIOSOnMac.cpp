#include "apptools/AppBundleIOSOnMac.h"

#include "plist/Utilities.h"

#include <QDir>
#include <QFileInfo>

#include <array>
#include <utility>

namespace quorlin::apptools {

namespace {

constexpr std::array<std::pair<const char*, const char*>, 18> macOSVersions{{
    {"17.4", "14.4"},
    {"17.2", "14.2"},
    {"17.0", "14.0"},
    {"16.4", "13.3"},
    {"16.2", "13.1"},
    {"16.1", "13.0"},
    {"15.5", "12.3"},
    {"15.4", "12.3"},
    {"15.2", "12.1"},
    {"15.0", "12.0"},
    {"14.5", "11.3"},
    {"14.3", "11.1"},
    {"14.2", "11.0"},
    {"13.6", "10.15.6"},
    {"13.4", "10.15.4"},
    {"13.3", "10.15.2"},
    {"13.2", "10.15.1"},
    {"13.0", "10.15"},
}};

} // namespace

std::unique_ptr<AppBundle> AppBundleIOSOnMac::make(const QString& path) {
    auto contents =
        readContents(path, QStringLiteral("WrappedBundle/Info.plist"), QStringLiteral("WrappedBundle/"));
    if (!contents)
        return nullptr;
    return std::unique_ptr<AppBundle>(
        new AppBundleIOSOnMac(path, std::move(contents->executable), std::move(contents->infoPlist)));
}

std::optional<QString> AppBundleIOSOnMac::macOSVersionForIOSVersion(const QString& iOSVersion) {
    std::optional<QString> smallestBelow;
    for (const auto& [iOS, macOS] : macOSVersions) {
        const QString key = QLatin1String(iOS);
        if (key == iOSVersion)
            return QLatin1String(macOS);
        if (Utilities::compareVersions(key, iOSVersion) < 0 &&
            (!smallestBelow || Utilities::compareVersions(key, *smallestBelow) < 0))
            smallestBelow = key;
    }
    return smallestBelow;
}

std::optional<QString> AppBundleIOSOnMac::minimumOSVersion() const {
    const auto iOSVersion = infoPlist().string(QStringLiteral("MinimumOSVersion"));
    return iOSVersion ? macOSVersionForIOSVersion(*iOSVersion) : std::nullopt;
}

std::optional<QString> AppBundleIOSOnMac::icon() const {
    // The primary icon's files are named without their scale and extension.
    const plist::Dictionary* icons = infoPlist().dictionary(QStringLiteral("CFBundleIcons"));
    const plist::Dictionary* primary =
        icons ? icons->dictionary(QStringLiteral("CFBundlePrimaryIcon")) : nullptr;
    const plist::Array* files = primary ? primary->array(QStringLiteral("CFBundleIconFiles")) : nullptr;
    if (!files || files->isEmpty() || !files->last().toString())
        return std::nullopt;
    const QDir folder(QDir(url()).filePath(QStringLiteral("WrappedBundle")));
    const QFileInfoList candidates =
        folder.entryInfoList({*files->last().toString() + QLatin1String("*.png")}, QDir::Files, QDir::Size);
    if (candidates.isEmpty())
        return std::nullopt;
    return candidates.first().filePath();
}

} // namespace quorlin::apptools
