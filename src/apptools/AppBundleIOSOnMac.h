#pragma once

#include "apptools/AppBundleMacOS.h"

namespace quorlin::apptools {

// An iOS application wrapped for the Mac: WrappedBundle/Info.plist,
// WrappedBundle/<executable>.
class AppBundleIOSOnMac : public AppBundleMacOS {
public:
    static std::unique_ptr<AppBundle> make(const QString& path);

    std::optional<OS> os() const override { return OS::iOSOnMac; }
    // The macOS release that runs the app's "MinimumOSVersion" of iOS.
    std::optional<QString> minimumOSVersion() const override;
    std::optional<QString> icon() const override;

    // For a version not in the table, the smallest of its iOS versions that
    // lies below it, itself and not its macOS counterpart.
    static std::optional<QString> macOSVersionForIOSVersion(const QString& iOSVersion);

private:
    using AppBundleMacOS::AppBundleMacOS;
};

} // namespace quorlin::apptools
