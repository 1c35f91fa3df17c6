#include "workspace/UnfamiliarPayloadCommand.h"

namespace quorlin {

UnfamiliarPayloadCommand::UnfamiliarPayloadCommand(const Profile::Pointer& profile,
                                                   const QString& payloadType, int ordinal,
                                                   plist::Dictionary after, std::function<void()> changed)
    : QUndoCommand(QStringLiteral("Edit Property List"))
    , m_profile(profile)
    , m_payloadType(payloadType)
    , m_ordinal(ordinal)
    , m_after(std::move(after))
    , m_changed(std::move(changed)) {
    qsizetype seen = 0;
    for (const plist::Dictionary& payload : profile->unfamiliarPayloads()) {
        if (payload.string(QStringLiteral("PayloadType")) == payloadType && seen++ == ordinal)
            m_before = payload;
    }
}

// The profile puts payloads back by place; taking those of the type out and
// giving them back with one changed keeps every other byte.
void UnfamiliarPayloadCommand::apply(const plist::Dictionary& payload) {
    const auto profile = m_profile.lock();
    if (!profile)
        return;
    auto removed = profile->removeUnfamiliarPayloads({m_payloadType});
    if (m_ordinal < removed.size())
        removed[m_ordinal].payload = payload;
    profile->restoreUnfamiliarPayloads(removed);
    if (m_changed)
        m_changed();
}

} // namespace quorlin
