#pragma once

#include "model/ProfileDifference.h"

#include <QList>
#include <QString>

namespace quorlin {

// The differences of two profiles as lines for people: grouped by payload,
// the payload's title and name heading each group, then one line per key,
// titles first and the key path after.
//
//   Relay “Office” (com.quorlin.test.relay): payload changed
//     ~ Account › Port (Account.Port): 443 → 8443
class ProfileDifferenceText {
public:
    // One line per difference, each ending in a line break; a line saying
    // so when there are none.
    static QString report(const QList<ProfileDifference>& differences);
    // The heading of a payload's group, or the line of a signature.
    static QString heading(const ProfileDifference& difference);
    // The line of one key or item, without its indentation.
    static QString line(const ProfileDifference& difference);
    static QString noDifferences();
    // "signed by “A”, “B”" for an array of names; "not signed" for none.
    static QString signerWords(const std::optional<plist::Value>& signers);

private:
    static QString payloadWords(const ProfileDifference& difference);
    static QString marker(ProfileDifference::Kind kind);
    static QString change(const ProfileDifference& difference);
};

} // namespace quorlin
