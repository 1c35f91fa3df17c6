#pragma once

#include "model/PreferenceKey.h"
#include "workspace/KeySnapshot.h"

#include <QString>
#include <QUndoCommand>

namespace quorlin {

// One value written to one key. Writes of plain values with the same edit
// identity, one after the other, merge: typing in a field is one step.
class KeyValueCommand : public QUndoCommand {
public:
    static constexpr int commandId = 0x5157;

    KeyValueCommand(const PreferenceKey::Pointer& key, const PreferenceKeyValue& value, QString editIdentity);

    void redo() override;
    void undo() override;
    int id() const override { return commandId; }
    bool mergeWith(const QUndoCommand* other) override;

private:
    bool isTyping() const;

    PreferenceKey::Pointer m_key;
    PreferenceKeyValue m_value;
    QString m_editIdentity;
    KeySnapshot m_before;
    KeySnapshot m_after;
    bool m_done = false;
};

} // namespace quorlin
