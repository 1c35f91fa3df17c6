#pragma once

#include "plist/Expected.h"
#include "plist/Value.h"
#include "schema/PFMSupportedPlatforms.h"
#include "schema/PFMXDecodingError.h"
#include "schema/PFMXSharedIPad.h"
#include "schema/PFMXUserEnrollment.h"

#include <QString>

#include <optional>

namespace quorlin {

// Availability of a domain or key on one platform, in the extended format.
struct PFMXSupportedOS {
    std::optional<QString> introduced; // a version, or "n/a" for never
    std::optional<QString> deprecated;
    std::optional<QString> removed;
    std::optional<bool> deviceChannel;
    std::optional<bool> userChannel;
    std::optional<bool> supervised;
    std::optional<bool> requiresDEP;
    std::optional<bool> userApprovedMDM;
    std::optional<bool> allowManualInstall;
    std::optional<PFMXSharedIPad> sharedIPad;
    std::optional<PFMXUserEnrollment> userEnrollment;
    std::optional<bool> alwaysSkippable;
    std::optional<bool> multiple;

    // Every field is optional, but a value of the wrong type fails the record.
    static Expected<PFMXSupportedOS, PFMXDecodingError> decode(const plist::Dictionary& dictionary,
                                                               const QString& codingPath = {});

    // True when "pfmx_introduced" says the platform never got it.
    bool isNeverIntroduced() const;
    // The three versions as life-cycle stages; nothing when none is given.
    std::optional<PFMSupportedPlatforms::StageVersions> stageVersions() const;

    friend bool operator==(const PFMXSupportedOS&, const PFMXSupportedOS&) = default;
};

} // namespace quorlin
