#pragma once

#include "plist/Value.h"

#include <QList>
#include <QString>

#include <optional>

namespace quorlin {

// Pairs the payloads of two versions of a profile: by type and identifier,
// then by type and display name, then by type and likeness of content. An
// identifier that differs only by the payload's own regenerated UUID counts
// as the same identifier.
class PayloadMatcher {
public:
    struct Match {
        std::optional<qsizetype> oldIndex;
        std::optional<qsizetype> newIndex;
    };

    // Pairs and lone payloads, in the new profile's order, the removed ones last.
    static QList<Match> match(const QList<plist::Dictionary>& oldPayloads,
                              const QList<plist::Dictionary>& newPayloads);
    // The identifier with the payload's own UUID taken out.
    static QString identity(const plist::Dictionary& payload);

private:
    using Pairing = QList<std::optional<qsizetype>>; // for each new payload, its old one
    using Key = QString (*)(const plist::Dictionary&);

    static void pairByKey(const QList<plist::Dictionary>& oldPayloads,
                          const QList<plist::Dictionary>& newPayloads, Key key, Pairing& pairing);
    static void pairByLikeness(const QList<plist::Dictionary>& oldPayloads,
                               const QList<plist::Dictionary>& newPayloads, Pairing& pairing);
    static double likeness(const plist::Dictionary& a, const plist::Dictionary& b);
};

} // namespace quorlin
