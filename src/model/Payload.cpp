#include "model/Payload.h"

#include "model/Profile.h"
#include "plist/XmlWriter.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace quorlin {

namespace {

const QString payloadUUIDName = QStringLiteral("PayloadUUID");
const QString payloadIdentifierName = QStringLiteral("PayloadIdentifier");
const QString payloadDisplayNameName = QStringLiteral("PayloadDisplayName");

PreferenceKey::Pointer firstOf(const PreferenceKey::KeyList& keys) {
    return keys.isEmpty() ? nullptr : keys.first();
}

} // namespace

Payload::Payload(DomainPointer domain, std::shared_ptr<const ProfileEnvironment> environment)
    : m_domain(std::move(domain))
    , m_environment(std::move(environment)) {}

Payload::Pointer Payload::make(const DomainPointer& domain, const std::shared_ptr<Profile>& profile,
                               std::shared_ptr<const ProfileEnvironment> environment,
                               const std::optional<plist::Dictionary>& dictionary) {
    if (!environment)
        environment = ProfileEnvironment::makeSystem();
    Pointer payload(new Payload(domain, std::move(environment)));
    payload->m_profile = profile;
    payload->buildKeys(dictionary);
    payload->linkConditionals();
    for (const auto& key : payload->m_preferenceKeys)
        key->holdExcludedValues();
    return payload;
}

Payload::Pointer Payload::makeNewPayload(const DomainPointer& domain, const std::shared_ptr<Profile>& profile,
                                         std::shared_ptr<const ProfileEnvironment> environment,
                                         const QString& uuid) {
    Pointer payload = make(domain, profile, std::move(environment));
    if (const auto uuidKey = payload->payloadUUIDKey())
        uuidKey->setValue(plist::Value(uuid));
    payload->generateIdentifier();
    return payload;
}

Payload::Pointer Payload::makeNewPayloadFromFile(const DomainPointer& domain,
                                                 const std::shared_ptr<Profile>& profile,
                                                 std::shared_ptr<const ProfileEnvironment> environment,
                                                 const QString& uuid, const QString& filePath) {
    Pointer payload = makeNewPayload(domain, profile, std::move(environment), uuid);
    const auto& dataKeyName = domain->payloadFileDataSubkeyName();
    if (!dataKeyName)
        return payload;
    // A file that can't be read leaves the data key empty.
    QFile file(filePath);
    if (const auto dataKey = firstOf(payload->keyNamed(*dataKeyName));
        dataKey && file.open(QIODevice::ReadOnly))
        dataKey->setValue(plist::Value(file.readAll()));
    if (const auto& nameKeyName = domain->payloadFileNameSubkeyName()) {
        if (const auto nameKey = firstOf(payload->keyNamed(*nameKeyName)))
            nameKey->setValue(plist::Value(QFileInfo(filePath).fileName()));
    }
    return payload;
}

void Payload::buildKeys(const std::optional<plist::Dictionary>& dictionary) {
    std::optional<plist::Dictionary> remaining = dictionary;
    const Pointer self = shared_from_this();
    for (const auto& prototype : m_domain->keyPrototypes()) {
        if (!prototype->name())
            continue;
        const QString& name = *prototype->name();
        if (remaining && remaining->contains(name)) {
            m_preferenceKeys.append(
                PreferenceKey::makeFromValue(prototype, remaining->value(name), {}, self));
            remaining->remove(name);
        } else {
            m_preferenceKeys.append(PreferenceKey::makeNew(prototype, {}, self));
        }
    }
    if (remaining && !remaining->isEmpty())
        m_unfamiliarPreferenceKeys = std::move(remaining);
}

void Payload::linkConditionals() {
    for (const auto& key : m_preferenceKeys)
        linkConditionals(key);
}

void Payload::linkConditionals(const PreferenceKey::Pointer& key) {
    const auto& rules = key->prototype().conditionalPrototypes();
    for (const auto& rule : rules) {
        PreferenceKey::PathMap targets;
        for (const QString& path : rule.targetPaths()) {
            if (auto target = keyAtPath(path))
                targets.insert(path, std::move(target));
        }
        key->addConditional(rule, targets);
    }
    if (key->prototype().kind() != PFMKeyPrototype::Kind::dictionary)
        return;
    if (const auto children = key->children()) {
        for (const auto& child : *children)
            linkConditionals(child);
    }
}

plist::Dictionary Payload::writeOutDictionary() const {
    plist::Dictionary written;
    for (const auto& key : m_preferenceKeys) {
        if (auto value = key->writeOutValue())
            written.insert(key->name(), *value);
    }
    if (m_unfamiliarPreferenceKeys) {
        for (auto entry = m_unfamiliarPreferenceKeys->begin(); entry != m_unfamiliarPreferenceKeys->end();
             ++entry)
            written.insert(entry.key(), entry.value());
    }
    return written;
}

QList<Payload::HeldPlace> Payload::heldValuePlaces() const {
    QList<HeldPlace> places;
    // A loop over a stack rather than recursion: a file may nest deeply.
    QList<HeldPlace> pending;
    for (auto key = m_preferenceKeys.rbegin(); key != m_preferenceKeys.rend(); ++key)
        pending.append({*key, (*key)->name()});
    while (!pending.isEmpty()) {
        const HeldPlace place = pending.takeLast();
        const PreferenceKey& key = *place.key;
        if (!key.heldEntries().isEmpty())
            places.append(place);
        // Inside an excluded key or a ghost only its own held value is written.
        if (key.holdsOnlyItsOwnValue())
            continue;
        const auto children = key.children();
        if (!children)
            continue;
        const bool isArray = key.prototype().kind() == PFMKeyPrototype::Kind::array;
        for (qsizetype index = children->size() - 1; index >= 0; --index) {
            const auto& child = children->at(index);
            const QString suffix =
                isArray ? QStringLiteral("[%1]").arg(index) : QLatin1Char('.') + child->name();
            pending.append({child, place.path + suffix});
        }
    }
    return places;
}

PreferenceKey::KeyList Payload::keyNamed(const QString& name) const {
    PreferenceKey::KeyList found;
    for (const auto& key : m_preferenceKeys) {
        if (key->prototype().name() == name)
            found.append(key);
    }
    return found;
}

PreferenceKey::Pointer Payload::keyAtPath(const QString& path) const {
    const QStringList parts = path.split(QLatin1Char('.'));
    if (path.isEmpty() || parts.isEmpty())
        return nullptr;
    PreferenceKey::Pointer key = firstOf(keyNamed(parts.first()));
    for (qsizetype index = 1; key && index < parts.size(); ++index) {
        const PreferenceKey::KeyMap* subkeys = key->value().keyMap();
        if (key->prototype().kind() != PFMKeyPrototype::Kind::dictionary || !subkeys || subkeys->isEmpty())
            return nullptr;
        key = subkeys->value(parts[index]);
    }
    return key;
}

PreferenceKey::Pointer Payload::payloadUUIDKey() const {
    return firstOf(keyNamed(payloadUUIDName));
}

PreferenceKey::Pointer Payload::payloadIdentifierKey() const {
    return firstOf(keyNamed(payloadIdentifierName));
}

PreferenceKey::Pointer Payload::payloadDisplayNameKey() const {
    return firstOf(keyNamed(payloadDisplayNameName));
}

std::optional<QString> Payload::displayName() const {
    return stringValue(payloadDisplayNameName);
}

std::optional<QString> Payload::stringValue(const QString& keyName) const {
    const auto key = firstOf(keyNamed(keyName));
    const plist::Value* value = key ? key->value().plistValue() : nullptr;
    return value ? value->toString() : std::nullopt;
}

std::optional<QString> Payload::generateIdentifier() {
    const auto identifierKey = payloadIdentifierKey();
    if (!identifierKey)
        return std::nullopt;
    const auto storedUUID = stringValue(payloadUUIDName);
    const QString uuid = storedUUID ? *storedUUID : makeUUIDString();
    const auto& defaultValue = identifierKey->prototype().defaultValue();
    const auto defaultIdentifier = defaultValue ? defaultValue->toString() : std::nullopt;
    QString identifier;
    if (!m_domain->domainString().isEmpty() && defaultIdentifier)
        identifier = *defaultIdentifier + QLatin1Char('.') + uuid;
    else
        identifier = m_environment->defaultIdentifier(uuid);
    identifierKey->setValue(plist::Value(identifier));
    return identifier;
}

QString Payload::makeUUIDString() const {
    if (const auto owner = profile())
        return owner->makeUniquePayloadUUID();
    return m_environment->uuids->makeUUIDString();
}

bool Payload::exportToFile(const QString& filePath, bool stripPayloadKeys) const {
    plist::Dictionary exported = writeOutDictionary();
    if (stripPayloadKeys) {
        for (const QString& name : exported.keys()) {
            if (name.startsWith(QLatin1String("Payload")))
                exported.remove(name);
        }
    }
    const auto bytes = plist::XmlWriter::write(plist::Value(exported));
    if (!bytes)
        return false;
    QSaveFile file(filePath);
    return file.open(QIODevice::WriteOnly) && file.write(*bytes) == bytes->size() && file.commit();
}

} // namespace quorlin
