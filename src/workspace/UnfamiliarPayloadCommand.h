#pragma once

#include "model/Profile.h"

#include <QUndoCommand>

#include <functional>

namespace quorlin {

// One edit of a payload that no manifest knows: its whole dictionary
// before and after, put in its place among the payloads of its type.
class UnfamiliarPayloadCommand : public QUndoCommand {
public:
    UnfamiliarPayloadCommand(const Profile::Pointer& profile, const QString& payloadType, int ordinal,
                             plist::Dictionary after, std::function<void()> changed);

    void redo() override { apply(m_after); }
    void undo() override { apply(m_before); }

private:
    void apply(const plist::Dictionary& payload);

    std::weak_ptr<Profile> m_profile;
    QString m_payloadType;
    int m_ordinal;
    plist::Dictionary m_before;
    plist::Dictionary m_after;
    std::function<void()> m_changed;
};

} // namespace quorlin
