#include "model/ArrayItemMatcher.h"

#include "model/ProfileValueText.h"

#include <QHash>
#include <QSet>

#include <algorithm>

namespace quorlin {

namespace {

// Names that manifests give to the key that identifies an item, best first.
const QStringList kIdentityNames{QStringLiteral("BundleIdentifier"),
                                 QStringLiteral("bundleIdentifier"),
                                 QStringLiteral("BundleID"),
                                 QStringLiteral("bundleID"),
                                 QStringLiteral("Identifier"),
                                 QStringLiteral("identifier"),
                                 QStringLiteral("ID"),
                                 QStringLiteral("UUID"),
                                 QStringLiteral("Name"),
                                 QStringLiteral("name")};

bool isContainer(const plist::Value& value) {
    return value.isArray() || value.isDictionary();
}

// Whether every item of the arrays is a dictionary with a string under
// `key`, unique within its own array.
bool identifiesItems(const QString& key, const QList<const plist::Array*>& arrays) {
    for (const plist::Array* items : arrays) {
        QSet<QString> seen;
        for (const plist::Value& item : *items) {
            const plist::Dictionary* dictionary = item.dictionary();
            const auto identity = dictionary ? dictionary->string(key) : std::nullopt;
            if (!identity || seen.contains(*identity))
                return false;
            seen.insert(*identity);
        }
    }
    return true;
}

QStringList candidateKeys(const QList<const plist::Array*>& arrays) {
    QStringList candidates = kIdentityNames;
    for (const plist::Array* items : arrays) {
        const plist::Dictionary* first = items->isEmpty() ? nullptr : items->first().dictionary();
        for (const QString& name : first ? first->keys() : QStringList{}) {
            const QString lower = name.toLower();
            if ((lower.contains(QLatin1String("identifier")) || lower.contains(QLatin1String("bundleid"))) &&
                !candidates.contains(name))
                candidates << name;
        }
    }
    return candidates;
}

} // namespace

QList<ArrayItemMatcher::Match> ArrayItemMatcher::match(const plist::Array& oldItems,
                                                       const plist::Array& newItems) {
    const QList<const plist::Array*> arrays{&oldItems, &newItems};
    const auto key = identityKey(arrays);
    if (!key && !allScalars(arrays))
        return matchByPlace(oldItems.size(), newItems.size());
    QList<Match> matches = matchByIdentity(identities(oldItems, key), identities(newItems, key));
    markMoves(matches);
    // A scalar shows itself as its value; only a dictionary needs a name.
    for (Match& match : matches) {
        if (!key)
            match.label.clear();
    }
    return matches;
}

QStringList ArrayItemMatcher::labels(const plist::Array& items) {
    const QList<const plist::Array*> arrays{&items};
    const auto key = identityKey(arrays);
    return key ? identities(items, key) : QStringList(items.size(), QString());
}

std::optional<QString> ArrayItemMatcher::identityKey(const QList<const plist::Array*>& arrays) {
    const bool anyItem =
        std::any_of(arrays.begin(), arrays.end(), [](auto items) { return !items->isEmpty(); });
    if (!anyItem)
        return std::nullopt;
    for (const QString& candidate : candidateKeys(arrays)) {
        if (identifiesItems(candidate, arrays))
            return candidate;
    }
    return std::nullopt;
}

// Scalars name themselves; a repeated one is told apart by its occurrence.
QStringList ArrayItemMatcher::identities(const plist::Array& items, const std::optional<QString>& key) {
    QStringList result;
    QHash<QString, int> occurrences;
    for (const plist::Value& item : items) {
        QString identity =
            key ? item.dictionary()->string(*key).value_or(QString()) : ProfileValueText::describe(item);
        const int seen = occurrences[identity]++;
        result << (seen == 0 ? identity : QStringLiteral("%1 (%2)").arg(identity).arg(seen + 1));
    }
    return result;
}

bool ArrayItemMatcher::allScalars(const QList<const plist::Array*>& arrays) {
    return std::all_of(arrays.begin(), arrays.end(), [](const plist::Array* items) {
        return std::none_of(items->begin(), items->end(), isContainer);
    });
}

QList<ArrayItemMatcher::Match> ArrayItemMatcher::matchByIdentity(const QStringList& oldIds,
                                                                 const QStringList& newIds) {
    QHash<QString, qsizetype> oldIndexes;
    for (qsizetype index = 0; index < oldIds.size(); ++index)
        oldIndexes.insert(oldIds[index], index);
    QList<Match> matches;
    QSet<qsizetype> pairedOld;
    for (qsizetype index = 0; index < newIds.size(); ++index) {
        const auto found = oldIndexes.constFind(newIds[index]);
        std::optional<qsizetype> oldIndex;
        if (found != oldIndexes.constEnd()) {
            oldIndex = found.value();
            pairedOld.insert(*oldIndex);
        }
        matches.append(Match{oldIndex, index, newIds[index], false});
    }
    for (qsizetype index = 0; index < oldIds.size(); ++index) {
        if (!pairedOld.contains(index))
            matches.append(Match{index, std::nullopt, oldIds[index], false});
    }
    return matches;
}

QList<ArrayItemMatcher::Match> ArrayItemMatcher::matchByPlace(qsizetype oldCount, qsizetype newCount) {
    QList<Match> matches;
    for (qsizetype index = 0; index < std::max(oldCount, newCount); ++index) {
        Match match;
        if (index < oldCount)
            match.oldIndex = index;
        if (index < newCount)
            match.newIndex = index;
        matches.append(match);
    }
    std::stable_partition(matches.begin(), matches.end(),
                          [](const Match& m) { return m.newIndex.has_value(); });
    return matches;
}

// The pairs in the longest run that keeps its order stay put; the others
// moved. Pairs come in new order, so the run is the longest increasing
// sequence of their old places.
void ArrayItemMatcher::markMoves(QList<Match>& matches) {
    QList<qsizetype> paired;
    for (qsizetype index = 0; index < matches.size(); ++index) {
        if (matches[index].oldIndex && matches[index].newIndex)
            paired << index;
    }
    QList<qsizetype> tails; // tails[k]: the entry of `paired` ending the best run of length k+1
    QList<qsizetype> previous(paired.size(), -1);
    const auto oldOf = [&](qsizetype entry) { return *matches[paired[entry]].oldIndex; };
    for (qsizetype entry = 0; entry < paired.size(); ++entry) {
        const auto place = std::lower_bound(tails.begin(), tails.end(), oldOf(entry),
                                            [&](qsizetype tail, qsizetype old) { return oldOf(tail) < old; });
        if (place != tails.begin())
            previous[entry] = *(place - 1);
        if (place == tails.end())
            tails.append(entry);
        else
            *place = entry;
    }
    QSet<qsizetype> kept;
    for (qsizetype entry = tails.isEmpty() ? -1 : tails.last(); entry >= 0; entry = previous[entry])
        kept.insert(entry);
    for (qsizetype entry = 0; entry < paired.size(); ++entry)
        matches[paired[entry]].moved = !kept.contains(entry);
}

} // namespace quorlin
