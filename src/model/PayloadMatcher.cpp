#include "model/PayloadMatcher.h"

#include <QHash>
#include <QSet>

#include <algorithm>

namespace quorlin {

namespace {

const QString kPayloadType = QStringLiteral("PayloadType");
const QString kPayloadUUID = QStringLiteral("PayloadUUID");
const QString kPayloadIdentifier = QStringLiteral("PayloadIdentifier");
const QString kPayloadDisplayName = QStringLiteral("PayloadDisplayName");
// Half the settings alike is more than chance for payloads of one type.
constexpr double kLikenessThreshold = 0.5;

QString typeOf(const plist::Dictionary& payload) {
    return payload.string(kPayloadType).value_or(QString());
}

QString typeAndIdentifier(const plist::Dictionary& payload) {
    const QString identifier = PayloadMatcher::identity(payload);
    return identifier.isEmpty() ? QString() : typeOf(payload) + u'\n' + identifier;
}

QString typeAndDisplayName(const plist::Dictionary& payload) {
    const QString name = payload.string(kPayloadDisplayName).value_or(QString());
    return name.isEmpty() ? QString() : typeOf(payload) + u'\n' + name;
}

QSet<qsizetype> pairedOld(const QList<std::optional<qsizetype>>& pairing) {
    QSet<qsizetype> paired;
    for (const auto& old : pairing) {
        if (old)
            paired.insert(*old);
    }
    return paired;
}

} // namespace

QList<PayloadMatcher::Match> PayloadMatcher::match(const QList<plist::Dictionary>& oldPayloads,
                                                   const QList<plist::Dictionary>& newPayloads) {
    Pairing pairing(newPayloads.size());
    pairByKey(oldPayloads, newPayloads, typeAndIdentifier, pairing);
    pairByKey(oldPayloads, newPayloads, typeAndDisplayName, pairing);
    pairByLikeness(oldPayloads, newPayloads, pairing);

    QList<Match> matches;
    for (qsizetype index = 0; index < newPayloads.size(); ++index)
        matches.append(Match{pairing[index], index});
    const QSet<qsizetype> paired = pairedOld(pairing);
    for (qsizetype index = 0; index < oldPayloads.size(); ++index) {
        if (!paired.contains(index))
            matches.append(Match{index, std::nullopt});
    }
    return matches;
}

QString PayloadMatcher::identity(const plist::Dictionary& payload) {
    QString identifier = payload.string(kPayloadIdentifier).value_or(QString());
    const QString uuid = payload.string(kPayloadUUID).value_or(QString());
    if (!uuid.isEmpty())
        identifier.replace(uuid, QString(), Qt::CaseInsensitive);
    return identifier;
}

void PayloadMatcher::pairByKey(const QList<plist::Dictionary>& oldPayloads,
                               const QList<plist::Dictionary>& newPayloads, Key key, Pairing& pairing) {
    const QSet<qsizetype> paired = pairedOld(pairing);
    QMultiHash<QString, qsizetype> unpaired;
    for (qsizetype index = oldPayloads.size() - 1; index >= 0; --index) {
        const QString value = key(oldPayloads[index]);
        if (!paired.contains(index) && !value.isEmpty())
            unpaired.insert(value, index);
    }
    for (qsizetype index = 0; index < newPayloads.size(); ++index) {
        const QString value = key(newPayloads[index]);
        if (pairing[index] || value.isEmpty())
            continue;
        // The most recently inserted, so the first in the old order.
        const auto found = unpaired.find(value);
        if (found == unpaired.end())
            continue;
        pairing[index] = found.value();
        unpaired.erase(found);
    }
}

// The most alike pairs of one type go first, as long as they are alike
// enough. Then the last of a type on either side pair whatever their
// likeness: that is one payload changed, not one removed and one added.
void PayloadMatcher::pairByLikeness(const QList<plist::Dictionary>& oldPayloads,
                                    const QList<plist::Dictionary>& newPayloads, Pairing& pairing) {
    QSet<qsizetype> paired = pairedOld(pairing);
    struct Candidate {
        double likeness;
        qsizetype oldIndex;
        qsizetype newIndex;
    };
    QList<Candidate> candidates;
    QHash<QString, QList<qsizetype>> oldLeft;
    QHash<QString, QList<qsizetype>> newLeft;
    for (qsizetype old = 0; old < oldPayloads.size(); ++old) {
        if (!paired.contains(old))
            oldLeft[typeOf(oldPayloads[old])] << old;
    }
    for (qsizetype index = 0; index < newPayloads.size(); ++index) {
        if (pairing[index])
            continue;
        const QString type = typeOf(newPayloads[index]);
        newLeft[type] << index;
        for (const qsizetype old : oldLeft.value(type))
            candidates.append({likeness(oldPayloads[old], newPayloads[index]), old, index});
    }
    std::stable_sort(candidates.begin(), candidates.end(),
                     [](const Candidate& a, const Candidate& b) { return a.likeness > b.likeness; });
    for (const Candidate& candidate : candidates) {
        if (candidate.likeness < kLikenessThreshold || pairing[candidate.newIndex] ||
            paired.contains(candidate.oldIndex))
            continue;
        pairing[candidate.newIndex] = candidate.oldIndex;
        paired.insert(candidate.oldIndex);
    }
    for (auto type = newLeft.cbegin(); type != newLeft.cend(); ++type) {
        QList<qsizetype> news = type.value();
        QList<qsizetype> olds = oldLeft.value(type.key());
        news.removeIf([&](qsizetype index) { return pairing[index].has_value(); });
        olds.removeIf([&](qsizetype old) { return paired.contains(old); });
        if (news.size() == 1 && olds.size() == 1)
            pairing[news.first()] = olds.first();
    }
}

// The share of settings, the "Payload..." keys aside, that both hold alike.
double PayloadMatcher::likeness(const plist::Dictionary& a, const plist::Dictionary& b) {
    QSet<QString> names;
    for (const QString& name : a.keys() + b.keys()) {
        if (!name.startsWith(QLatin1String("Payload")))
            names.insert(name);
    }
    if (names.isEmpty())
        return 1;
    qsizetype alike = 0;
    for (const QString& name : names)
        alike += (a.contains(name) && a.value(name) == b.value(name)) ? 1 : 0;
    return double(alike) / double(names.size());
}

} // namespace quorlin
