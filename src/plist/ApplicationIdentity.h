#pragma once

#include <QString>

namespace quorlin {

// Who the program is, in one place: the editor and the command-line tool
// share one identity so that they read the same settings and stores.
class ApplicationIdentity {
public:
    // "com.quorlin.ProfileEditor": names the defaults file and is what other
    // tools of the platform know the program by.
    static QString bundleIdentifier();
    // "Quorlin Profile Editor", for people.
    static QString displayName();
    // "quorlin-profile-editor": the folder name of the settings and data.
    static QString applicationName();
    // The dotted version of this build, e.g. "2.0.0".
    static QString shortVersionString();

    // Sets the application name and version of QCoreApplication. Call it
    // before anything asks QStandardPaths for a location.
    static void apply();
};

} // namespace quorlin
