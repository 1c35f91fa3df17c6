#pragma once

#include <QString>

#include <optional>

namespace quorlin::apptools {

// An app the user picked for a field that takes a bundle identifier: its
// identifier, and whatever else is known of it. A pick from the App Store
// knows a name at most; an app read from disk also knows its icon and what
// its signature says, which neighbouring keys of the field may take.
struct ChosenApp {
    QString bundleId;
    std::optional<QString> appName;
    // An image file, or an icon set that `AppIconImage` reads.
    std::optional<QString> iconFile;
    std::optional<QString> codeRequirement;
    std::optional<QString> teamIdentifier;

    // An application folder or a program file; nothing when it can't be
    // read as one or names no identifier.
    static std::optional<ChosenApp> fromFile(const QString& path);
};

} // namespace quorlin::apptools
