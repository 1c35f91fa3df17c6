#pragma once

#include "model/PreferenceKey.h"
#include "plist/Value.h"

namespace quorlin {

// Binds a plist value to a key of a payload under edit, as reading a file
// binds it: what the key's prototype can't bind is held, not dropped. The
// subkeys of a dictionary stay the same objects, so the rules linked to
// them keep working; array items are made anew, as the form's tables make
// them. Each key tells its observers as `setValue` does.
class PlistValueBinder {
public:
    // A null value leaves the key without one.
    static void bind(const PreferenceKey::Pointer& key, const plist::Value& value);
    // Values below the key that its prototype describes but that don't fit it.
    static qsizetype misfitCount(const PreferenceKey& key);

private:
    static void bindSubkeys(const PreferenceKey::Pointer& key, const plist::Dictionary& source,
                            HeldValues& held);
    static PreferenceKeyValue bindItems(const PreferenceKey::Pointer& key, const plist::Array& source,
                                        HeldValues& held);
};

} // namespace quorlin
