#pragma once

namespace quorlin {

class PreferenceKey;

// Told synchronously whenever the value of an observed key, or of any key
// below it, changes. Keys hold their observers weakly.
class PreferenceKeyObserver {
public:
    virtual ~PreferenceKeyObserver() = default;
    virtual void preferenceKeyValueDidChange(PreferenceKey& key) = 0;
};

} // namespace quorlin
