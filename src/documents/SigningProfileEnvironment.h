#pragma once

#include "documents/SigningServices.h"
#include "model/ProfileEnvironment.h"

#include <memory>

namespace quorlin {

class UserDefaults;

// The environment profiles are made, opened and saved in: the user's
// preferences for new profiles and the signing identities. The editor and
// the command-line tool both take it from here, so they make the same profiles.
class SigningProfileEnvironment {
public:
    static std::shared_ptr<const ProfileEnvironment> make(const UserDefaults& defaults,
                                                          const SigningServices& signing);
};

} // namespace quorlin
