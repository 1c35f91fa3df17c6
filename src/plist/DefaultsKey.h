#pragma once

#include <QString>

namespace quorlin {

// The names of every user default the program reads or writes, so that no
// key is ever spelt twice.
namespace DefaultsKey {
// Registered at every start.
inline const QString preferencesDefaultsAutomaticallyUpdate =
    QStringLiteral("preferencesDefaultsAutomaticallyUpdate");
inline const QString lastChoiceViewPropertyNames = QStringLiteral("lastChoiceViewPropertyNames");
inline const QString lastChoiceShowSupervisionTags = QStringLiteral("lastChoiceShowSupervisionTags");
inline const QString lastChoiceShowRequirementTags = QStringLiteral("lastChoiceShowRequirementTags");
inline const QString lastChoiceShowPlatformTags = QStringLiteral("lastChoiceShowPlatformTags");
inline const QString lastChoiceShowPlatformTagsWhenDifferent =
    QStringLiteral("lastChoiceShowPlatformTagsWhenDifferent");
inline const QString lastChoiceShowPropertyDocumentationButtons =
    QStringLiteral("lastChoiceShowPropertyDocumentationButtons");
inline const QString preferencesDefaultsUnsetDefaultBooleans =
    QStringLiteral("preferencesDefaultsUnsetDefaultBooleans");
inline const QString manifestRepositoryType = QStringLiteral("manifestRepositoryType");
inline const QString onlineManifestRepositoryAddress = QStringLiteral("onlineManifestRepositoryAddress");
inline const QString onlineManifestRepositoryBranchName =
    QStringLiteral("onlineManifestRepositoryBranchName");
inline const QString maximizeNonStandardManifestCompatibility =
    QStringLiteral("maximizeNonStandardManifestCompatibility");
inline const QString lastShownOnlineManifestsUpdateModificationDate =
    QStringLiteral("lastShownOnlineManifestsUpdateModificationDate");
inline const QString lastChoiceShowingBooleanDescriptions =
    QStringLiteral("lastChoiceShowingBooleanDescriptions");
// DefaultsValue::formDensityComfortable or formDensityCompact.
inline const QString lastChoiceFormDensity = QStringLiteral("lastChoiceFormDensity");
inline const QString lastChoiceShowIssues = QStringLiteral("lastChoiceShowIssues");

// Absent until written.
inline const QString preferencesDefaultsOrganizationName =
    QStringLiteral("preferencesDefaultsOrganizationName");
inline const QString preferencesDefaultsConsentText = QStringLiteral("preferencesDefaultsConsentText");
inline const QString preferencesDefaultsSigningIdentity =
    QStringLiteral("preferencesDefaultsSigningIdentity");
inline const QString identifierPrefix = QStringLiteral("identifierPrefix");
inline const QString bundledToOnlineResultsFiltering = QStringLiteral("bundledToOnlineResultsFiltering");
inline const QString lastLaunchedBundleShortVersionString =
    QStringLiteral("lastLaunchedBundleShortVersionString");
inline const QString localRepositoryPathBookmark = QStringLiteral("localRepositoryPathBookmark");
inline const QString userManifestFolderBookmark = QStringLiteral("userManifestFolderBookmark");
inline const QString lastChoiceValidationSettings = QStringLiteral("lastChoiceValidationSettings");
inline const QString lastChoiceFilteringForIOS = QStringLiteral("lastChoiceFilteringForIOS");
inline const QString lastChoiceFilteringForMacOS = QStringLiteral("lastChoiceFilteringForMacOS");
inline const QString lastChoiceFilteringForTvOS = QStringLiteral("lastChoiceFilteringForTvOS");
inline const QString lastChoiceFilteringForWatchOS = QStringLiteral("lastChoiceFilteringForWatchOS");
inline const QString noticeSuppressOnlineManifestsUpdated =
    QStringLiteral("noticeSuppressOnlineManifestsUpdated");
inline const QString noticeSuppressReloadProfileOnRepositoryChange =
    QStringLiteral("noticeSuppressReloadProfileOnRepositoryChange");
inline const QString noticeSuppressMalformedPayloadsRemoved =
    QStringLiteral("noticeSuppressMalformedPayloadsRemoved");
inline const QString noticeSuppressProfileInvalid = QStringLiteral("noticeSuppressProfileInvalid");
inline const QString noticeSuppressSigningIdentityMissing =
    QStringLiteral("noticeSuppressSigningIdentityMissing");
inline const QString noticeSuppressIOS15SilentInstallationIncompatibility =
    QStringLiteral("noticeSuppressIOS15SilentInstallationIncompatibility");
inline const QString noticeSuppressSavedToQuorlinLibrary =
    QStringLiteral("noticeSuppressSavedToQuorlinLibrary");
// Off unless set: the usage events go to a local log for the administrator's audit.
inline const QString analyticsAuditLogEnabled = QStringLiteral("analyticsAuditLogEnabled");

// Written by earlier versions; read once by the version migrations and removed.
inline const QString lastLaunchedBundleVersionString = QStringLiteral("lastLaunchedBundleVersionString");
inline const QString preferencesDefaultsOmitDefaultProperties =
    QStringLiteral("preferencesDefaultsOmitDefaultProperties");
inline const QString lastUsedSigningIdentityCommonName = QStringLiteral("lastUsedSigningIdentityCommonName");

// The self-updater of old versions; only ever removed.
inline const QString suEnableAutomaticChecks = QStringLiteral("SUEnableAutomaticChecks");
} // namespace DefaultsKey

// The values of "manifestRepositoryType" and "bundledToOnlineResultsFiltering".
namespace DefaultsValue {
inline const QString repositoryTypeOnline = QStringLiteral("online");
inline const QString repositoryTypeLocal = QStringLiteral("local");
// Any other value, or none, also means the bundled repository.
inline const QString repositoryTypeBundled = QStringLiteral("quorlin_standard");
inline const QString resultsFilter = QStringLiteral("filter");
inline const QString resultsNoFilter = QStringLiteral("noFilter");
inline const QString formDensityComfortable = QStringLiteral("comfortable");
inline const QString formDensityCompact = QStringLiteral("compact");
} // namespace DefaultsValue

} // namespace quorlin
