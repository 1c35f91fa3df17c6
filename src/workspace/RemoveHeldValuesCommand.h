#pragma once

#include "model/HeldValues.h"
#include "model/PreferenceKey.h"

#include <QList>
#include <QUndoCommand>

#include <memory>
#include <utility>

namespace quorlin {

// Takes out the values that keys hold against their manifests, as one step;
// undo gives each key back what it held.
class RemoveHeldValuesCommand : public QUndoCommand {
public:
    RemoveHeldValuesCommand(const PreferenceKey::KeyList& keys, const QString& text);

    bool isEmpty() const { return m_held.isEmpty(); }
    void redo() override;
    void undo() override;

private:
    QList<std::pair<std::weak_ptr<PreferenceKey>, HeldValues>> m_held;
};

} // namespace quorlin
