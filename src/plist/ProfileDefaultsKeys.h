#pragma once

#include <QString>

namespace quorlin {

// The user defaults that the profile model reads when it makes a profile or
// an identifier. They live here, below every layer that reads them; the
// shell's full list of defaults takes them from here.
namespace DefaultsKey {
inline const QString preferencesDefaultsOrganizationName =
    QStringLiteral("preferencesDefaultsOrganizationName");
inline const QString preferencesDefaultsConsentText = QStringLiteral("preferencesDefaultsConsentText");
inline const QString preferencesDefaultsSigningIdentity =
    QStringLiteral("preferencesDefaultsSigningIdentity");
inline const QString identifierPrefix = QStringLiteral("identifierPrefix");
} // namespace DefaultsKey

} // namespace quorlin
