#pragma once

namespace quorlin {

// How the desktop knows the editor's windows: the name of its desktop entry,
// which groups the windows and finds the icon in the theme.
class DesktopIdentity {
public:
    static constexpr const char* desktopFileName = "com.quorlin.ProfileEditor";

    // After the QApplication exists.
    static void apply();
};

} // namespace quorlin
