#include "model/ProfileComparison.h"

#include "model/ArrayItemMatcher.h"
#include "model/PayloadMatcher.h"

namespace quorlin {

namespace {

using Kind = ProfileDifference::Kind;

const QString kPayloadType = QStringLiteral("PayloadType");
const QString kPayloadContent = QStringLiteral("PayloadContent");
const QString kPayloadUUID = QStringLiteral("PayloadUUID");
const QString kPayloadIdentifier = QStringLiteral("PayloadIdentifier");
const QString kPayloadDisplayName = QStringLiteral("PayloadDisplayName");
const QString kRootType = QStringLiteral("Configuration");

const PFMKeyPrototype* prototypeNamed(const PFMKeyPrototypeList& prototypes, const QString& name) {
    for (const auto& prototype : prototypes) {
        if (prototype->name() == name)
            return prototype.get();
    }
    return nullptr;
}

// The manifest's order first, then the keys it doesn't know, by name.
QStringList orderedNames(const plist::Dictionary& a, const plist::Dictionary& b,
                         const PFMKeyPrototypeList& prototypes) {
    QStringList names;
    for (const auto& prototype : prototypes) {
        const QString name = prototype->name().value_or(QString());
        if ((a.contains(name) || b.contains(name)) && !names.contains(name))
            names << name;
    }
    QStringList others = a.keys();
    for (const QString& name : b.keys()) {
        if (!a.contains(name))
            others << name;
    }
    std::sort(others.begin(), others.end());
    for (const QString& name : others) {
        if (!names.contains(name))
            names << name;
    }
    return names;
}

const PFMKeyPrototypeList& subkeysOf(const PFMKeyPrototype* prototype) {
    static const PFMKeyPrototypeList none;
    return prototype ? prototype->subkeys() : none;
}

const PFMKeyPrototype* itemPrototype(const PFMKeyPrototype* prototype) {
    const bool isArray = prototype && prototype->kind() == PFMKeyPrototype::Kind::array;
    return isArray && !prototype->subkeys().isEmpty() ? prototype->subkeys().first().get() : nullptr;
}

} // namespace

ProfileComparison::ProfileComparison(const DomainList& domains, Options options)
    : m_options(options) {
    // The first domain of a type binds it, as when a profile is read.
    for (auto domain = domains.crbegin(); domain != domains.crend(); ++domain)
        m_domainsByType.insert((*domain)->domainString(), *domain);
}

QList<ProfileDifference> ProfileComparison::compare(const plist::Dictionary& oldProfile,
                                                    const plist::Dictionary& newProfile) const {
    QList<ProfileDifference> differences;
    const plist::Dictionary oldRoot = rootSettings(oldProfile);
    const plist::Dictionary newRoot = rootSettings(newProfile);
    comparePayloads(&oldRoot, &newRoot, true, differences);

    const QList<plist::Dictionary> oldPayloads = configurationPayloads(oldProfile);
    const QList<plist::Dictionary> newPayloads = configurationPayloads(newProfile);
    for (const PayloadMatcher::Match& match : PayloadMatcher::match(oldPayloads, newPayloads)) {
        comparePayloads(match.oldIndex ? &oldPayloads[*match.oldIndex] : nullptr,
                        match.newIndex ? &newPayloads[*match.newIndex] : nullptr, false, differences);
    }
    return differences;
}

std::shared_ptr<const PFMDomain> ProfileComparison::domainFor(const plist::Dictionary& payload,
                                                              bool isRoot) const {
    return m_domainsByType.value(isRoot ? QString() : payload.string(kPayloadType).value_or(QString()));
}

ProfileDifference ProfileComparison::payloadHeading(const plist::Dictionary& payload, bool isRoot) const {
    ProfileDifference heading;
    heading.payloadType = isRoot ? kRootType : payload.string(kPayloadType).value_or(QString());
    const auto domain = domainFor(payload, isRoot);
    heading.payloadTitle = domain ? domain->title() : heading.payloadType;
    heading.payloadName = payload.string(kPayloadDisplayName).value_or(QString());
    return heading;
}

QList<plist::Dictionary> ProfileComparison::configurationPayloads(const plist::Dictionary& profile) {
    QList<plist::Dictionary> payloads;
    const plist::Array* content = profile.array(kPayloadContent);
    for (const plist::Value& element : content ? *content : plist::Array{}) {
        if (const plist::Dictionary* payload = element.dictionary())
            payloads << *payload;
    }
    return payloads;
}

plist::Dictionary ProfileComparison::rootSettings(const plist::Dictionary& profile) {
    plist::Dictionary root = profile;
    root.remove(kPayloadContent);
    return root;
}

void ProfileComparison::comparePayloads(const plist::Dictionary* oldPayload,
                                        const plist::Dictionary* newPayload, bool isRoot,
                                        QList<ProfileDifference>& differences) const {
    Walk walk{payloadHeading(newPayload ? *newPayload : *oldPayload, isRoot), {}, {}, {}};
    if (!oldPayload || !newPayload) {
        walk.heading.kind = oldPayload ? Kind::payloadRemoved : Kind::payloadAdded;
        differences << walk.heading;
        return;
    }
    walk.oldUUID = oldPayload->string(kPayloadUUID).value_or(QString());
    walk.newUUID = newPayload->string(kPayloadUUID).value_or(QString());
    const auto domain = domainFor(*newPayload, isRoot);
    compareDictionaries(*oldPayload, *newPayload, domain ? domain->keyPrototypes() : PFMKeyPrototypeList{},
                        Place{}, walk);
    if (walk.found.isEmpty())
        return;
    walk.heading.kind = Kind::payloadChanged;
    differences << walk.heading << walk.found;
}

void ProfileComparison::compareDictionaries(const plist::Dictionary& oldEntries,
                                            const plist::Dictionary& newEntries,
                                            const PFMKeyPrototypeList& prototypes, const Place& place,
                                            Walk& walk) const {
    for (const QString& name : orderedNames(oldEntries, newEntries, prototypes)) {
        if (place.path.isEmpty() && isLeftOut(name, oldEntries, newEntries, walk))
            continue;
        const PFMKeyPrototype* prototype = prototypeNamed(prototypes, name);
        const QString title = prototype ? prototype->title() : PFMKeyPrototype::titleFromKeyName(name);
        const Place child{place.path.isEmpty() ? name : place.path + u'.' + name,
                          place.titles + QStringList{title}, prototype};
        compareValues(oldEntries.value(name), newEntries.value(name), child, walk);
    }
}

void ProfileComparison::compareValues(const plist::Value& oldValue, const plist::Value& newValue,
                                      const Place& place, Walk& walk) const {
    if (sameInEffect(oldValue, newValue))
        return;
    if (oldValue.isNull())
        return add(walk, Kind::keyAdded, place, std::nullopt, newValue);
    if (newValue.isNull())
        return add(walk, Kind::keyRemoved, place, oldValue, std::nullopt);
    if (oldValue.isDictionary() && newValue.isDictionary())
        return compareDictionaries(*oldValue.dictionary(), *newValue.dictionary(), subkeysOf(place.prototype),
                                   place, walk);
    if (oldValue.isArray() && newValue.isArray())
        return compareArrays(*oldValue.array(), *newValue.array(), place, walk);
    add(walk, Kind::keyChanged, place, oldValue, newValue);
}

void ProfileComparison::compareArrays(const plist::Array& oldItems, const plist::Array& newItems,
                                      const Place& place, Walk& walk) const {
    for (const ArrayItemMatcher::Match& match : ArrayItemMatcher::match(oldItems, newItems)) {
        const qsizetype index = match.newIndex ? *match.newIndex : *match.oldIndex;
        const QString label = match.label.isEmpty() ? QStringLiteral("Item %1").arg(index + 1) : match.label;
        const Place item{QStringLiteral("%1[%2]").arg(place.path).arg(index),
                         place.titles + QStringList{label}, itemPrototype(place.prototype)};
        const auto oldItem = match.oldIndex ? std::optional(oldItems[*match.oldIndex]) : std::nullopt;
        const auto newItem = match.newIndex ? std::optional(newItems[*match.newIndex]) : std::nullopt;
        const bool isLone = !oldItem || !newItem;
        if (isLone || match.moved) {
            const Kind kind = !oldItem ? Kind::itemAdded : !newItem ? Kind::itemRemoved : Kind::itemMoved;
            add(walk, kind, item, oldItem, newItem);
            walk.found.last().oldIndex = match.oldIndex;
            walk.found.last().newIndex = match.newIndex;
        }
        if (isLone)
            continue;
        compareValues(*oldItem, *newItem, item, walk);
    }
}

// A payload's UUID is regenerated at will and says nothing of its effect;
// its identifier often embeds that UUID, which counts as no change either.
bool ProfileComparison::isLeftOut(const QString& name, const plist::Dictionary& oldEntries,
                                  const plist::Dictionary& newEntries, const Walk& walk) const {
    if (name == kPayloadUUID)
        return true;
    if (name != kPayloadIdentifier)
        return false;
    if (m_options.ignoreIdentifiers)
        return true;
    QString oldIdentifier = oldEntries.string(name).value_or(QString());
    if (!walk.oldUUID.isEmpty() && !walk.newUUID.isEmpty())
        oldIdentifier.replace(walk.oldUUID, walk.newUUID, Qt::CaseInsensitive);
    return newEntries.string(name) == oldIdentifier;
}

void ProfileComparison::add(Walk& walk, ProfileDifference::Kind kind, const Place& place,
                            std::optional<plist::Value> oldValue, std::optional<plist::Value> newValue) {
    ProfileDifference difference = walk.heading;
    difference.kind = kind;
    difference.keyPath = place.path;
    difference.keyTitles = place.titles;
    difference.oldValue = std::move(oldValue);
    difference.newValue = std::move(newValue);
    walk.found << difference;
}

// An integer and a real of one value set a device alike.
bool ProfileComparison::sameInEffect(const plist::Value& a, const plist::Value& b) {
    if (a == b)
        return true;
    const bool bothNumbers = (a.isInteger() || a.isReal()) && (b.isInteger() || b.isReal());
    return bothNumbers && a.numberAsReal() == b.numberAsReal();
}

} // namespace quorlin
