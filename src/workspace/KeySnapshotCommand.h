#pragma once

#include "model/PreferenceKey.h"
#include "workspace/KeySnapshot.h"

#include <QList>
#include <QString>
#include <QUndoCommand>

#include <functional>

namespace quorlin {

// An edit that may touch any key below the given ones, such as populating
// the defaults of a payload: the action runs once, and undo and redo
// restore the values from before and after it.
class KeySnapshotCommand : public QUndoCommand {
public:
    KeySnapshotCommand(const QString& text, PreferenceKey::KeyList keys, std::function<void()> action);

    void redo() override;
    void undo() override;

private:
    PreferenceKey::KeyList m_keys;
    std::function<void()> m_action;
    QList<KeySnapshot> m_before;
    QList<KeySnapshot> m_after;
    bool m_done = false;
};

} // namespace quorlin
