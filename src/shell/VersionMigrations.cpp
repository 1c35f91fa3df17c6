#include "shell/VersionMigrations.h"

#include "plist/UserDefaults.h"
#include "plist/Utilities.h"
#include "shell/FactoryDefaults.h"
#include "supply/RepositoryStorePaths.h"

#include <QDir>
#include <QFile>

namespace quorlin {

namespace {

bool isOlder(const QString& version, const QString& than) {
    return Utilities::compareVersions(version, than) < 0;
}

} // namespace

QString VersionMigrations::versionOfLegacyVersionKey() {
    return QStringLiteral("1.3.3");
}

void VersionMigrations::run(UserDefaults& defaults, const QString& currentVersion) {
    if (currentVersion.isEmpty())
        return;
    const std::optional<QString> lastVersion = takeLastLaunchedVersion(defaults);
    if (!lastVersion) {
        defaults.set(DefaultsKey::lastLaunchedBundleShortVersionString, currentVersion);
        return;
    }
    if (!isOlder(*lastVersion, currentVersion))
        return;

    if (isOlder(*lastVersion, QStringLiteral("1.4")))
        migrateOmitDefaultProperties(defaults);
    if (isOlder(*lastVersion, QStringLiteral("1.5")))
        migrateSigningIdentity(defaults);
    if (isOlder(*lastVersion, QStringLiteral("1.5.2")) && !isOlder(*lastVersion, QStringLiteral("1.5.0")))
        removeBadlyStandardizedIndex(defaults);
    if (isOlder(*lastVersion, QStringLiteral("1.8")))
        hideDocumentationButtons(defaults);

    defaults.set(DefaultsKey::lastLaunchedBundleShortVersionString, currentVersion);
}

std::optional<QString> VersionMigrations::takeLastLaunchedVersion(UserDefaults& defaults) {
    if (defaults.string(DefaultsKey::lastLaunchedBundleVersionString)) {
        defaults.remove(DefaultsKey::lastLaunchedBundleVersionString);
        return versionOfLegacyVersionKey();
    }
    return defaults.string(DefaultsKey::lastLaunchedBundleShortVersionString);
}

void VersionMigrations::migrateOmitDefaultProperties(UserDefaults& defaults) {
    // Only the name changed: omitting default properties is what leaving
    // default booleans unset was called before.
    const std::optional<bool> omit = defaults.boolean(DefaultsKey::preferencesDefaultsOmitDefaultProperties);
    if (!omit)
        return;
    defaults.remove(DefaultsKey::preferencesDefaultsOmitDefaultProperties);
    defaults.set(DefaultsKey::preferencesDefaultsUnsetDefaultBooleans, *omit);
}

void VersionMigrations::migrateSigningIdentity(UserDefaults& defaults) {
    const std::optional<QString> name = defaults.string(DefaultsKey::lastUsedSigningIdentityCommonName);
    if (!name)
        return;
    defaults.remove(DefaultsKey::lastUsedSigningIdentityCommonName);
    defaults.set(DefaultsKey::preferencesDefaultsSigningIdentity, *name);
}

void VersionMigrations::removeBadlyStandardizedIndex(const UserDefaults& defaults) {
    // Versions 1.5.0 and 1.5.1 wrote stores that must be standardized anew;
    // without the index the next update downloads and standardizes all.
    if (defaults.string(DefaultsKey::manifestRepositoryType) != DefaultsValue::repositoryTypeOnline)
        return;
    const QString address = defaults.string(DefaultsKey::onlineManifestRepositoryAddress).value_or(QString());
    if (!RepositoryStorePaths::addressIsValid(address))
        return;
    const QString branch =
        defaults.string(DefaultsKey::onlineManifestRepositoryBranchName).value_or(QStringLiteral("master"));
    const auto directory = RepositoryStorePaths::storageDirectoryForRepositoryAddress(address, branch);
    if (!directory)
        return;
    removeFileInsideStore(QDir(*directory).filePath(QStringLiteral("standardized-index.plist")));
}

void VersionMigrations::hideDocumentationButtons(UserDefaults& defaults) {
    defaults.set(DefaultsKey::lastChoiceShowPropertyDocumentationButtons, false);
}

bool VersionMigrations::removeFileInsideStore(const QString& filePath) {
    if (!RepositoryStorePaths::isInside(filePath, RepositoryStorePaths::storeRoot()))
        return false;
    return QFile::remove(QDir::cleanPath(filePath));
}

} // namespace quorlin
