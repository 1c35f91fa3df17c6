#pragma once

#include "schema/PFMSupportedPlatforms.h"

#include <optional>

namespace quorlin {

// One platform on which a domain or key exists, with the versions of its
// life-cycle stages where they are known.
struct SupportedPlatform {
    using Model = PFMSupportedPlatforms::Model;
    using StageVersions = PFMSupportedPlatforms::StageVersions;

    Model model = Model::iOS;
    std::optional<StageVersions> versions; // never empty when present

    friend bool operator==(const SupportedPlatform&, const SupportedPlatform&) = default;
    // Platforms order by model first, so a set of them lists iOS, macOS, tvOS, watchOS.
    friend bool operator<(const SupportedPlatform& a, const SupportedPlatform& b);
};

} // namespace quorlin
