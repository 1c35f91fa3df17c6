#include "model/ProfileTextForm.h"

#include "model/ArrayItemMatcher.h"
#include "model/PayloadMatcher.h"
#include "model/ProfileDifferenceText.h"
#include "model/ProfileValueText.h"

#include <algorithm>

namespace quorlin {

namespace {

const QString kPayloadUUID = QStringLiteral("PayloadUUID");
const QString kPayloadIdentifier = QStringLiteral("PayloadIdentifier");
const QString kUUIDPlaceholder = QStringLiteral("<PayloadUUID>");

// The manifest's order first, then the keys it doesn't know, by name.
QList<std::pair<QString, const PFMKeyPrototype*>> orderedEntries(const plist::Dictionary& entries,
                                                                 const PFMKeyPrototypeList& prototypes) {
    QList<std::pair<QString, const PFMKeyPrototype*>> ordered;
    QStringList named;
    for (const auto& prototype : prototypes) {
        const QString name = prototype->name().value_or(QString());
        if (entries.contains(name) && !named.contains(name)) {
            ordered.append({name, prototype.get()});
            named << name;
        }
    }
    for (const QString& name : entries.keys()) {
        if (!named.contains(name))
            ordered.append({name, nullptr});
    }
    return ordered;
}

} // namespace

ProfileTextForm::ProfileTextForm(const ProfileComparison::DomainList& domains)
    : m_comparison(domains) {}

QString ProfileTextForm::render(const plist::Dictionary& profile) const {
    QList<plist::Dictionary> payloads = ProfileComparison::configurationPayloads(profile);
    std::stable_sort(payloads.begin(), payloads.end(), [&](const auto& a, const auto& b) {
        return sortKey(m_comparison.payloadHeading(a, false), a) <
               sortKey(m_comparison.payloadHeading(b, false), b);
    });
    QStringList sections{section(ProfileComparison::rootSettings(profile), true)};
    for (const plist::Dictionary& payload : payloads)
        sections << section(payload, false);
    return sections.join(u'\n');
}

QString ProfileTextForm::section(const plist::Dictionary& payload, bool isRoot) const {
    QString heading = ProfileDifferenceText::heading(m_comparison.payloadHeading(payload, isRoot));
    heading.truncate(heading.lastIndexOf(QStringLiteral(": ")));
    QStringList lines{QStringLiteral("== %1 ==").arg(heading)};
    plist::Dictionary entries = payload;
    const QString uuid = entries.take(kPayloadUUID).toString().value_or(QString());
    // An identifier made of the UUID would differ with every new UUID.
    if (const auto identifier = entries.string(kPayloadIdentifier); identifier && !uuid.isEmpty())
        entries.insert(kPayloadIdentifier,
                       QString(*identifier).replace(uuid, kUUIDPlaceholder, Qt::CaseInsensitive));
    const auto domain = m_comparison.domainFor(payload, isRoot);
    appendDictionary(entries, domain ? domain->keyPrototypes() : PFMKeyPrototypeList{}, Place{}, lines);
    return lines.join(u'\n') + u'\n';
}

void ProfileTextForm::appendDictionary(const plist::Dictionary& entries,
                                       const PFMKeyPrototypeList& prototypes, const Place& place,
                                       QStringList& lines) const {
    for (const auto& [name, prototype] : orderedEntries(entries, prototypes)) {
        const QString title = prototype ? prototype->title() : PFMKeyPrototype::titleFromKeyName(name);
        const Place child{place.path.isEmpty() ? name : place.path + u'.' + name,
                          place.titles + QStringList{title}, prototype};
        appendValue(entries.value(name), child, lines);
    }
}

void ProfileTextForm::appendValue(const plist::Value& value, const Place& place, QStringList& lines) const {
    const bool isFilledDictionary = value.isDictionary() && !value.dictionary()->isEmpty();
    const bool isFilledArray = value.isArray() && !value.array()->isEmpty();
    if (isFilledDictionary)
        return appendDictionary(*value.dictionary(),
                                place.prototype ? place.prototype->subkeys() : PFMKeyPrototypeList{}, place,
                                lines);
    if (isFilledArray)
        return appendArray(*value.array(), place, lines);
    lines << QStringLiteral("%1 (%2): %3")
                 .arg(place.titles.join(QStringLiteral(" › ")), place.path,
                      ProfileValueText::describe(value));
}

void ProfileTextForm::appendArray(const plist::Array& items, const Place& place, QStringList& lines) const {
    const QStringList labels = ArrayItemMatcher::labels(items);
    const bool isArrayKey = place.prototype && place.prototype->kind() == PFMKeyPrototype::Kind::array;
    const PFMKeyPrototype* itemPrototype = isArrayKey && !place.prototype->subkeys().isEmpty()
                                               ? place.prototype->subkeys().first().get()
                                               : nullptr;
    for (qsizetype index = 0; index < items.size(); ++index) {
        const QString label =
            labels[index].isEmpty() ? QStringLiteral("Item %1").arg(index + 1) : labels[index];
        const Place item{QStringLiteral("%1[%2]").arg(place.path).arg(index),
                         place.titles + QStringList{label}, itemPrototype};
        appendValue(items[index], item, lines);
    }
}

QString ProfileTextForm::sortKey(const ProfileDifference& heading, const plist::Dictionary& payload) {
    return QStringList{heading.payloadTitle, heading.payloadName, PayloadMatcher::identity(payload),
                       heading.payloadType}
        .join(u'\n');
}

} // namespace quorlin
