#pragma once

#include <QString>

// The options that several commands take, spelt once so that they can't
// drift apart between commands.
namespace quorlin::cli {

inline const QString kManifestsOption = QStringLiteral("--manifests");
inline const QString kJsonFlag = QStringLiteral("--json");
inline const QString kOutputOption = QStringLiteral("-o");
inline const QString kPassphraseFileOption = QStringLiteral("--passphrase-file");
inline const QString kIdentityOption = QStringLiteral("--identity");
inline const QString kEncryptForOption = QStringLiteral("--encrypt-for");

} // namespace quorlin::cli
