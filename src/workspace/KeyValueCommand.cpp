#include "workspace/KeyValueCommand.h"

namespace quorlin {

KeyValueCommand::KeyValueCommand(const PreferenceKey::Pointer& key, const PreferenceKeyValue& value,
                                 QString editIdentity)
    : m_key(key)
    , m_value(value)
    , m_editIdentity(std::move(editIdentity))
    , m_before(KeySnapshot::take(key))
    , m_after(m_before) {
    setText(QStringLiteral("Edit %1").arg(key->prototype().title()));
}

void KeyValueCommand::redo() {
    if (m_done) {
        m_after.restore();
        return;
    }
    m_key->setValue(m_value);
    m_after = KeySnapshot::take(m_key);
    m_done = true;
}

void KeyValueCommand::undo() {
    m_before.restore();
}

// Rows of a table and whole dictionaries are steps of their own.
bool KeyValueCommand::isTyping() const {
    return m_value.isAbsent() || m_value.plistValue();
}

bool KeyValueCommand::mergeWith(const QUndoCommand* other) {
    const auto* next = dynamic_cast<const KeyValueCommand*>(other);
    // A write without a place, such as a menu's command, is a step of its own.
    if (!next || m_editIdentity.isEmpty() || next->m_key != m_key || next->m_editIdentity != m_editIdentity ||
        !isTyping() || !next->isTyping())
        return false;
    m_value = next->m_value;
    m_after = next->m_after;
    return true;
}

} // namespace quorlin
