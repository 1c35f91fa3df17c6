#include "cli/ProfileContext.h"

#include "cli/ToolSettings.h"
#include "documents/SigningProfileEnvironment.h"

namespace quorlin::cli {

Expected<ProfileContext, QString> ProfileContext::make(const std::optional<QString>& manifestsFolder,
                                                       PassphraseProvider* passphrases) {
    auto listing = DomainSource::load(manifestsFolder);
    if (!listing)
        return fail(listing.error());
    SigningServices signing(passphrases);
    auto environment = SigningProfileEnvironment::make(ToolSettings::defaults(), signing);
    return ProfileContext{std::move(listing->domains), std::move(environment), std::move(signing)};
}

} // namespace quorlin::cli
