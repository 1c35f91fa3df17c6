#pragma once

#include "plist/Value.h"

#include <QString>

#include <optional>

namespace quorlin::apptools {

// The lighter read of an application folder that fields use for a file on
// disk: its information list, its executable, and whether it is a Mac app
// or an iOS app wrapped for the Mac.
struct AppInfo {
    enum class Kind { macOS, iOS };

    plist::Dictionary info;
    QString executable;
    Kind kind = Kind::macOS;

    // Nothing when neither information list can be read as a dictionary.
    static std::optional<AppInfo> read(const QString& path);
};

} // namespace quorlin::apptools
