#pragma once

#include "cli/ProfileOpener.h"
#include "plist/Value.h"

namespace quorlin::cli {

// The root dictionary of an opened profile as its file holds it (the content
// of a signed one), with every key the model doesn't bind.
class ProfileRoot {
public:
    static plist::Dictionary of(const OpenedProfile& opened);
};

} // namespace quorlin::cli
