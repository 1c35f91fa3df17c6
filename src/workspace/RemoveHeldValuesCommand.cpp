#include "workspace/RemoveHeldValuesCommand.h"

namespace quorlin {

RemoveHeldValuesCommand::RemoveHeldValuesCommand(const PreferenceKey::KeyList& keys, const QString& text)
    : QUndoCommand(text) {
    for (const auto& key : keys) {
        if (key && !key->heldValues().isEmpty())
            m_held.append({key, key->heldValues()});
    }
}

void RemoveHeldValuesCommand::redo() {
    for (const auto& [weakKey, held] : m_held) {
        if (const auto key = weakKey.lock())
            key->replaceHeldValues({});
    }
}

void RemoveHeldValuesCommand::undo() {
    for (auto entry = m_held.rbegin(); entry != m_held.rend(); ++entry) {
        if (const auto key = entry->first.lock())
            key->replaceHeldValues(entry->second);
    }
}

} // namespace quorlin
