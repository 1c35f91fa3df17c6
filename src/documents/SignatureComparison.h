#pragma once

#include "documents/SignedMessage.h"
#include "model/ProfileDifference.h"

#include <optional>

namespace quorlin {

// Whether two versions of a profile differ in who signed them. The values of
// the difference are the signers' common names, in order of name.
class SignatureComparison {
public:
    static std::optional<ProfileDifference> compare(const std::optional<SignedMessage>& oldSignature,
                                                    const std::optional<SignedMessage>& newSignature);

private:
    static plist::Value signerNames(const SignedMessage& signature);
};

} // namespace quorlin
