#pragma once

#include "plist/Expected.h"
#include "plist/Value.h"
#include "schema/PFMSupportedPlatforms.h"
#include "schema/PFMXDecodingError.h"
#include "schema/PFMXSupportedOS.h"

#include <QString>

#include <map>
#include <optional>

namespace quorlin {

// The decoded "pfmx_supported_oses" dictionary: one record per platform.
class PFMXSupportedOSes {
public:
    // The same four platforms; in the manifest they are keyed by their display names.
    using Model = PFMSupportedPlatforms::Model;

    PFMXSupportedOSes() = default;
    explicit PFMXSupportedOSes(std::map<Model, PFMXSupportedOS> storage)
        : supportedOSesStorge(std::move(storage)) {}

    // Keys other than "iOS", "macOS", "tvOS" and "watchOS" are ignored; an
    // entry that isn't a dictionary, or any field of the wrong type, fails all.
    static Expected<PFMXSupportedOSes, PFMXDecodingError> decode(const plist::Dictionary& dictionary);
    static QString codingKey(Model model);

    const std::map<Model, PFMXSupportedOS>& storage() const { return supportedOSesStorge; }
    // The record of one platform, or null when the manifest says nothing about it.
    const PFMXSupportedOS* supportedOS(Model model) const;

    friend bool operator==(const PFMXSupportedOSes&, const PFMXSupportedOSes&) = default;

private:
    std::map<Model, PFMXSupportedOS> supportedOSesStorge;
};

} // namespace quorlin
