#pragma once

#include "apptools/AppBundle.h"

namespace quorlin::apptools {

// A program file on its own, outside any bundle (a command-line tool, or an
// executable taken out of its application): what its signature says stands
// in for the information list it doesn't have.
class AppBundleProgramFile : public AppBundle {
public:
    static std::unique_ptr<AppBundle> make(const QString& path);

    std::optional<QString> name() const override;
    // The identifier it was signed with, which is what the system knows it by.
    std::optional<QString> bundleIdentifier() const override;
    std::optional<qint64> size() const override;

private:
    using AppBundle::AppBundle;
};

} // namespace quorlin::apptools
