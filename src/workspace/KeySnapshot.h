#pragma once

#include "model/PreferenceKey.h"
#include "model/PreferenceKeyValue.h"

#include <QList>

namespace quorlin {

// The values of a key and of every key below it, holding on to the key
// objects themselves. Restoring puts each value back on the same object, so
// the rules linked to those keys keep working and the profile writes the
// same bytes as when the snapshot was taken.
class KeySnapshot {
public:
    static KeySnapshot take(const PreferenceKey::Pointer& key);
    static QList<KeySnapshot> take(const PreferenceKey::KeyList& keys);

    // Children first, so that a container's value is set when its items are right.
    void restore() const;
    static void restore(const QList<KeySnapshot>& snapshots);

    const PreferenceKey::Pointer& key() const { return m_key; }

private:
    PreferenceKey::Pointer m_key;
    PreferenceKeyValue m_value;
    HeldValues m_held;
    bool m_keepsEmptyDictionary = false;
    QList<KeySnapshot> m_children;
};

} // namespace quorlin
