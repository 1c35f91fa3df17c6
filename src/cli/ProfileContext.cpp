#include "cli/ProfileContext.h"

#include "cli/ToolSettings.h"
#include "documents/SigningProfileEnvironment.h"

#include <algorithm>

namespace quorlin::cli {

Expected<ProfileContext, QString> ProfileContext::make(const std::optional<QString>& manifestsFolder,
                                                       PassphraseProvider* passphrases) {
    auto listing = DomainSource::load(manifestsFolder);
    if (!listing)
        return fail(listing.error());
    // Without it no profile can be made or read, and every profile would be
    // blamed for what the folder lacks.
    const bool hasGeneralDomain =
        std::any_of(listing->domains.cbegin(), listing->domains.cend(),
                    [](const auto& domain) { return domain->domainString().isEmpty(); });
    if (!hasGeneralDomain)
        return fail(manifestsFolder.value_or(QStringLiteral("the manifests in force")) +
                    QStringLiteral(": no manifest here describes the general settings of a profile"));
    SigningServices signing(passphrases);
    auto environment = SigningProfileEnvironment::make(ToolSettings::defaults(), signing);
    return ProfileContext{std::move(listing->domains), std::move(environment), std::move(signing)};
}

} // namespace quorlin::cli
