#include "workspace/KeySnapshot.h"

namespace quorlin {

KeySnapshot KeySnapshot::take(const PreferenceKey::Pointer& key) {
    KeySnapshot snapshot;
    snapshot.m_key = key;
    snapshot.m_value = key->value();
    snapshot.m_held = key->heldValues();
    snapshot.m_keepsEmptyDictionary = key->keepsEmptyDictionary();
    if (const auto children = key->children())
        snapshot.m_children = take(*children);
    return snapshot;
}

QList<KeySnapshot> KeySnapshot::take(const PreferenceKey::KeyList& keys) {
    QList<KeySnapshot> snapshots;
    snapshots.reserve(keys.size());
    for (const auto& key : keys)
        snapshots.append(take(key));
    return snapshots;
}

void KeySnapshot::restore() const {
    restore(m_children);
    m_key->setValue(m_value);
    // Setting a value lets go of what the key held; undo brings it back.
    if (m_key->heldValues() != m_held)
        m_key->replaceHeldValues(m_held);
    m_key->setKeepsEmptyDictionary(m_keepsEmptyDictionary);
}

void KeySnapshot::restore(const QList<KeySnapshot>& snapshots) {
    for (const KeySnapshot& snapshot : snapshots)
        snapshot.restore();
}

} // namespace quorlin
