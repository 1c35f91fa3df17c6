#include "workspace/KeySnapshotCommand.h"

namespace quorlin {

KeySnapshotCommand::KeySnapshotCommand(const QString& text, PreferenceKey::KeyList keys,
                                       std::function<void()> action)
    : m_keys(std::move(keys))
    , m_action(std::move(action))
    , m_before(KeySnapshot::take(m_keys)) {
    setText(text);
}

void KeySnapshotCommand::redo() {
    if (m_done) {
        KeySnapshot::restore(m_after);
        return;
    }
    m_action();
    m_action = nullptr;
    m_after = KeySnapshot::take(m_keys);
    m_done = true;
}

void KeySnapshotCommand::undo() {
    KeySnapshot::restore(m_before);
}

} // namespace quorlin
