#pragma once

#include "apptools/AppBundle.h"

namespace quorlin::apptools {

// An ordinary Mac application: Contents/Info.plist, Contents/MacOS/<executable>.
class AppBundleMacOS : public AppBundle {
public:
    static std::unique_ptr<AppBundle> make(const QString& path);

    std::optional<OS> os() const override { return OS::macOS; }
    std::optional<QString> minimumOSVersion() const override;
    std::optional<QString> icon() const override;

protected:
    struct Contents {
        QString executable;
        plist::Dictionary infoPlist;
    };
    // The bundle's information list and executable at the two locations
    // relative to the folder, which must be named "*.app".
    static std::optional<Contents> readContents(const QString& path, const QString& infoLocation,
                                                const QString& executablePrefix);

    using AppBundle::AppBundle;
};

} // namespace quorlin::apptools
