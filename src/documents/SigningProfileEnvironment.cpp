#include "documents/SigningProfileEnvironment.h"

#include "documents/EnvelopeServices.h"
#include "documents/ProfileSigningBridge.h"

namespace quorlin {

std::shared_ptr<const ProfileEnvironment> SigningProfileEnvironment::make(const UserDefaults& defaults,
                                                                          const SigningServices& signing) {
    auto environment = std::make_shared<ProfileEnvironment>(*ProfileEnvironment::makeFromDefaults(defaults));
    environment->signingServices = std::make_shared<ProfileSigningBridge>(signing);
    environment->encryptionServices = std::make_shared<EnvelopeServices>(signing);
    return environment;
}

} // namespace quorlin
