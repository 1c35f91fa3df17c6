#pragma once

#include "model/DateSource.h"
#include "model/ProfileEncryptionServices.h"
#include "model/ProfileSigningServices.h"
#include "model/UUIDSource.h"

#include <QString>

#include <functional>

#include <memory>
#include <optional>

namespace quorlin {

class UserDefaults;

// Everything outside the profile that its making and saving depend on: the
// sources of UUIDs and dates, the machine's name, the user's preferences and
// the signing services. Tests build one by hand; the program reads it once
// per profile from the user defaults, except the identifier prefix, which
// it reads when an identifier is made.
struct ProfileEnvironment {
    std::shared_ptr<UUIDSource> uuids;
    std::shared_ptr<DateSource> dates;
    // Null when signing isn't available: signed files can't be opened and
    // no save can be signed.
    std::shared_ptr<ProfileSigningServices> signingServices;
    // Asked each time an identifier is made, so that a prefix changed in the
    // preferences reaches the next payload of a document already open.
    std::function<std::optional<QString>()> identifierPrefix;
    // Null when encryption isn't available: encrypted payloads stay sealed.
    std::shared_ptr<ProfileEncryptionServices> encryptionServices;
    std::optional<QString> hostName;
    std::optional<QString> organizationName;
    std::optional<QString> consentText;
    std::optional<QString> signingIdentity;

    // System UUIDs, the system clock and this machine's name; no preferences.
    static std::shared_ptr<const ProfileEnvironment> makeSystem();
    // makeSystem, with the preferences that the defaults hold.
    static std::shared_ptr<const ProfileEnvironment> makeFromDefaults(const UserDefaults& defaults);

    // "<prefix>.<uuid>", the prefix being "identifierPrefix" or, without one,
    // the host name reduced to letters, digits and dashes.
    QString defaultIdentifier(const QString& uuid) const;
    static QString identifierPrefixFromHostName(const QString& hostName);
};

} // namespace quorlin
