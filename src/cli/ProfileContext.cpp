#include "cli/ProfileContext.h"

#include "cli/ToolSettings.h"
#include "documents/ProfileSigningBridge.h"

namespace quorlin::cli {

Expected<ProfileContext, QString> ProfileContext::make(const std::optional<QString>& manifestsFolder,
                                                       PassphraseProvider* passphrases) {
    auto listing = DomainSource::load(manifestsFolder);
    if (!listing)
        return fail(listing.error());
    SigningServices signing(passphrases);
    auto environment =
        std::make_shared<ProfileEnvironment>(*ProfileEnvironment::makeFromDefaults(ToolSettings::defaults()));
    environment->signingServices = std::make_shared<ProfileSigningBridge>(signing);
    return ProfileContext{std::move(listing->domains), std::move(environment), std::move(signing)};
}

} // namespace quorlin::cli
