#pragma once

#include "model/PreferenceKey.h"
#include "model/PreferenceKeyValue.h"
#include "plist/Value.h"

namespace quorlin {

// A plain plist dictionary or array turned into the value a key of that
// shape holds: item or subkey keys made under the key itself, so they belong
// to its tree; a free-form container stays plain.
class ContainerValue {
public:
    static PreferenceKeyValue make(const PreferenceKey::Pointer& key, const plist::Value& container);
};

} // namespace quorlin
