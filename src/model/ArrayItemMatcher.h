#pragma once

#include "plist/Value.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace quorlin {

// Pairs the items of two versions of one array. Items that have an identity
// (a scalar is its own; a dictionary has a string key that names it in every
// item, such as a bundle identifier) are paired by it, so that a reordered
// list shows moves rather than a change in every place; other items are
// paired by place.
class ArrayItemMatcher {
public:
    struct Match {
        std::optional<qsizetype> oldIndex;
        std::optional<qsizetype> newIndex;
        // The identity of a dictionary item, or empty for scalars and for
        // items paired by place.
        QString label;
        // Paired by identity and out of the order the other items keep.
        bool moved = false;
    };

    // Pairs and lone items, in the new array's order, the removed ones last.
    static QList<Match> match(const plist::Array& oldItems, const plist::Array& newItems);
    // The identity of each dictionary item of one array as match() sees
    // it, or empty strings when its items have none.
    static QStringList labels(const plist::Array& items);

private:
    static std::optional<QString> identityKey(const QList<const plist::Array*>& arrays);
    static QStringList identities(const plist::Array& items, const std::optional<QString>& key);
    static bool allScalars(const QList<const plist::Array*>& arrays);
    static QList<Match> matchByIdentity(const QStringList& oldIds, const QStringList& newIds);
    static QList<Match> matchByPlace(qsizetype oldCount, qsizetype newCount);
    static void markMoves(QList<Match>& matches);
};

} // namespace quorlin
