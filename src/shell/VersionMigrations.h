#pragma once

#include <QString>

#include <optional>

namespace quorlin {

class UserDefaults;

// Brings the settings that earlier versions left behind up to date, once
// per new version, and records the version that ran last.
class VersionMigrations {
public:
    // "1.3.3": the last version that wrote "lastLaunchedBundleVersionString".
    static QString versionOfLegacyVersionKey();

    // Runs the migrations from the last launched version up to
    // currentVersion. Without a current version nothing happens; on a first
    // start only the version is recorded; a downgrade changes nothing.
    static void run(UserDefaults& defaults, const QString& currentVersion);

    // Deletes a file only when it lies inside the store root; answers
    // whether it was deleted.
    static bool removeFileInsideStore(const QString& filePath);

private:
    // The version that ran last, consuming the legacy key; nothing on a first start.
    static std::optional<QString> takeLastLaunchedVersion(UserDefaults& defaults);
    static void migrateOmitDefaultProperties(UserDefaults& defaults);
    static void migrateSigningIdentity(UserDefaults& defaults);
    static void removeBadlyStandardizedIndex(const UserDefaults& defaults);
    static void hideDocumentationButtons(UserDefaults& defaults);
};

} // namespace quorlin
