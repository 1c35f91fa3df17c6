#pragma once

#include <memory>

namespace quorlin {

class Payload;
class PreferenceKey;
class Profile;

// The owner of a profile (its document), told of edits. Held weakly.
class ProfileDelegate {
public:
    virtual ~ProfileDelegate() = default;
    // A key changed, or a payload was added or removed (key is null).
    virtual void profileDidChange(Profile& profile, Payload* payload, PreferenceKey* key) = 0;
    // Payloads of "com.apple.profileRemovalPassword" were added or removed to follow the root.
    virtual void profileRemovalPasswordPayloadCountDidChange(Profile& profile) = 0;
};

} // namespace quorlin
