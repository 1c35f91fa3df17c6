#pragma once

#include <QString>

namespace quorlin {

// The user defaults that choose the manifest repositories, and the values
// of "manifestRepositoryType".
namespace RepositorySettingsKey {
inline const QString manifestRepositoryType = QStringLiteral("manifestRepositoryType");
inline const QString onlineManifestRepositoryAddress = QStringLiteral("onlineManifestRepositoryAddress");
inline const QString onlineManifestRepositoryBranchName =
    QStringLiteral("onlineManifestRepositoryBranchName");
inline const QString userManifestFolderBookmark = QStringLiteral("userManifestFolderBookmark");
inline const QString localRepositoryPathBookmark = QStringLiteral("localRepositoryPathBookmark");
inline const QString maximizeNonStandardManifestCompatibility =
    QStringLiteral("maximizeNonStandardManifestCompatibility");
} // namespace RepositorySettingsKey

namespace RepositoryType {
inline const QString online = QStringLiteral("online");
inline const QString local = QStringLiteral("local");
// Any other value, or none, means the bundled repository too.
inline const QString bundled = QStringLiteral("quorlin_standard");
} // namespace RepositoryType

} // namespace quorlin
