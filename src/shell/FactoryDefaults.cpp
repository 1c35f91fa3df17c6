#include "shell/FactoryDefaults.h"

#include "plist/UserDefaults.h"
#include "supply/RepositoryStorePaths.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace quorlin {

QList<FactoryDefaults::Entry> FactoryDefaults::table() {
    using namespace DefaultsKey;
    return {
        {preferencesDefaultsAutomaticallyUpdate, true},
        {lastChoiceViewPropertyNames, false},
        {lastChoiceShowSupervisionTags, true},
        {lastChoiceShowRequirementTags, true},
        {lastChoiceShowPlatformTags, true},
        {lastChoiceShowPlatformTagsWhenDifferent, true},
        {lastChoiceShowPropertyDocumentationButtons, false},
        {preferencesDefaultsUnsetDefaultBooleans, true},
        {manifestRepositoryType, DefaultsValue::repositoryTypeOnline},
        {onlineManifestRepositoryAddress, defaultOnlineRepositoryAddress()},
        {onlineManifestRepositoryBranchName, defaultOnlineRepositoryBranch()},
        {maximizeNonStandardManifestCompatibility, true},
        {lastShownOnlineManifestsUpdateModificationDate, distantPast()},
        {lastChoiceShowingBooleanDescriptions, false},
        {lastChoiceFormDensity, DefaultsValue::formDensityComfortable},
        {lastChoiceShowIssues, false},
    };
}

plist::Dictionary FactoryDefaults::registeredDefaults() {
    plist::Dictionary defaults;
    for (const auto& [key, value] : table())
        defaults.insert(key, value);
    return defaults;
}

QString FactoryDefaults::defaultOnlineRepositoryAddress() {
    return QStringLiteral("https://github.com/ProfileManifests/ProfileManifests");
}

QString FactoryDefaults::defaultOnlineRepositoryBranch() {
    // The public repository publishes its manifests on "master"; there is
    // no branch of our own there to follow.
    return QStringLiteral("master");
}

plist::Date FactoryDefaults::distantPast() {
    return plist::Date{-63114076800.0};
}

void FactoryDefaults::removeUserData(UserDefaults& defaults) {
    defaults.removePersistentDomain();
    const QString folder = RepositoryStorePaths::applicationDataFolder();
    // Only a folder of our own name: were the application name ever unset,
    // the platform would name the data folder shared by every program.
    if (folder.isEmpty() || QFileInfo(folder).fileName() != QCoreApplication::applicationName())
        return;
    QDir(folder).removeRecursively();
}

} // namespace quorlin
