#pragma once

#include "cli/DomainSource.h"
#include "documents/SigningServices.h"
#include "model/ProfileEnvironment.h"
#include "plist/Expected.h"

#include <QString>

#include <memory>
#include <optional>

namespace quorlin {
class PassphraseProvider;
}

namespace quorlin::cli {

// What a command needs to make, open and save profiles as the editor does:
// the domains, the user's preferences for new profiles, and the identities.
struct ProfileContext {
    DomainSource::DomainList domains;
    std::shared_ptr<const ProfileEnvironment> environment;
    SigningServices signing;

    // The domains of `manifestsFolder` when given, else those in force.
    // The passphrase provider, when given, must outlive the context.
    static Expected<ProfileContext, QString> make(const std::optional<QString>& manifestsFolder,
                                                  PassphraseProvider* passphrases = nullptr);
};

} // namespace quorlin::cli
