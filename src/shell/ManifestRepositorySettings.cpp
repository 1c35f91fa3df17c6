#include "shell/ManifestRepositorySettings.h"

#include "plist/DefaultsKey.h"
#include "plist/UserDefaults.h"
#include "shell/FactoryDefaults.h"
#include "supply/FolderBookmark.h"

namespace quorlin {

namespace {

QString folderOf(const UserDefaults& defaults, const QString& key) {
    const auto data = defaults.data(key);
    return data ? FolderBookmark::open(*data).folder : QString();
}

void storeFolder(UserDefaults& defaults, const QString& key, const QString& folder) {
    if (folder.isEmpty())
        defaults.remove(key);
    else
        defaults.set(key, FolderBookmark::data(folder));
}

QString withoutTrailingSlash(QString address) {
    while (address.endsWith(u'/'))
        address.chop(1);
    return address;
}

} // namespace

ManifestRepositorySettings ManifestRepositorySettings::read(const UserDefaults& defaults) {
    ManifestRepositorySettings settings;
    settings.type =
        defaults.string(DefaultsKey::manifestRepositoryType).value_or(DefaultsValue::repositoryTypeBundled);
    settings.onlineAddress =
        defaults.string(DefaultsKey::onlineManifestRepositoryAddress).value_or(QString());
    settings.onlineBranch =
        defaults.string(DefaultsKey::onlineManifestRepositoryBranchName).value_or(QString());
    settings.maximizeNonStandardManifestCompatibility =
        defaults.boolean(DefaultsKey::maximizeNonStandardManifestCompatibility).value_or(false);
    settings.localRepositoryPath = folderOf(defaults, DefaultsKey::localRepositoryPathBookmark);
    settings.userManifestFolder = folderOf(defaults, DefaultsKey::userManifestFolderBookmark);
    return settings;
}

void ManifestRepositorySettings::store(UserDefaults& defaults) const {
    defaults.set(DefaultsKey::manifestRepositoryType, type);
    defaults.set(DefaultsKey::onlineManifestRepositoryAddress, onlineAddress);
    defaults.set(DefaultsKey::onlineManifestRepositoryBranchName, onlineBranch);
    defaults.set(DefaultsKey::maximizeNonStandardManifestCompatibility,
                 maximizeNonStandardManifestCompatibility);
    storeFolder(defaults, DefaultsKey::localRepositoryPathBookmark, localRepositoryPath);
    storeFolder(defaults, DefaultsKey::userManifestFolderBookmark, userManifestFolder);
}

bool ManifestRepositorySettings::isOnline() const {
    return type == DefaultsValue::repositoryTypeOnline;
}

bool ManifestRepositorySettings::isLocal() const {
    return type == DefaultsValue::repositoryTypeLocal;
}

bool ManifestRepositorySettings::selectedRepositoryIsNonStandard() const {
    if (type == DefaultsValue::repositoryTypeBundled)
        return false;
    if (!isOnline() || onlineAddress.isEmpty() || onlineBranch.isEmpty())
        return true;
    const bool defaultAddress = withoutTrailingSlash(onlineAddress) ==
                                withoutTrailingSlash(FactoryDefaults::defaultOnlineRepositoryAddress());
    return !defaultAddress || onlineBranch != FactoryDefaults::defaultOnlineRepositoryBranch();
}

} // namespace quorlin
