#include "model/Profile.h"

#include "plist/PlistReader.h"
#include "plist/XmlWriter.h"

#include <QSet>

#include <algorithm>

namespace quorlin {

namespace {

const QString payloadTypeName = QStringLiteral("PayloadType");
const QString payloadContentName = QStringLiteral("PayloadContent");
const QString encryptedPayloadContentName = QStringLiteral("EncryptedPayloadContent");
const QString payloadUUIDName = QStringLiteral("PayloadUUID");
const QString payloadIdentifierName = QStringLiteral("PayloadIdentifier");
const QString znthProfilePropertiesName = QStringLiteral("ZNTHProfileProperties");
const QString removalPasscodeName = QStringLiteral("HasRemovalPasscode");
const QString removalPasswordType = QStringLiteral("com.apple.profileRemovalPassword");
const QString organizationDefaultName = QStringLiteral(".PayloadOrganization");
const QString consentTextDefaultName = QStringLiteral(".ConsentText");

// Marks a change that the profile makes to itself, so that the hooks it
// triggers don't answer it.
class SelfChangeScope {
public:
    SelfChangeScope(Profile::SelfChange& state, Profile::SelfChange change)
        : m_state(state)
        , m_previous(state) {
        m_state = change;
    }
    ~SelfChangeScope() { m_state = m_previous; }
    SelfChangeScope(const SelfChangeScope&) = delete;
    SelfChangeScope& operator=(const SelfChangeScope&) = delete;

private:
    Profile::SelfChange& m_state;
    Profile::SelfChange m_previous;
};

PreferenceKey::Pointer firstOf(const PreferenceKey::KeyList& keys) {
    return keys.isEmpty() ? nullptr : keys.first();
}

} // namespace

Profile::Profile(DomainList domains, std::shared_ptr<const ProfileEnvironment> environment)
    : m_domains(std::move(domains))
    , m_environment(environment ? std::move(environment) : ProfileEnvironment::makeSystem()) {}

Profile::Pointer Profile::makeNewProfile(const DomainList& domains,
                                         std::shared_ptr<const ProfileEnvironment> environment) {
    Pointer profile(new Profile(domains, std::move(environment)));
    const auto rootDomain = profile->rootDomain();
    if (!rootDomain)
        return nullptr;
    profile->m_rootPayload = Payload::makeNewPayload(rootDomain, profile, profile->m_environment,
                                                     profile->m_environment->uuids->makeUUIDString());
    profile->applyPreferencesDefaults();
    const auto& identity = profile->m_environment->signingIdentity;
    const auto& signing = profile->m_environment->signingServices;
    if (identity && !identity->isEmpty() && signing && signing->identityCommonNames().contains(*identity))
        profile->m_saveSignedWithCommonName = identity;
    return profile;
}

void Profile::applyPreferencesDefaults() {
    if (const auto& organization = m_environment->organizationName;
        organization && !organization->isEmpty()) {
        if (const auto key = firstOf(m_rootPayload->keyNamed(QStringLiteral("PayloadOrganization")))) {
            key->setValue(plist::Value(*organization));
            m_preferencesDefaults.insert(organizationDefaultName, key);
        }
    }
    if (const auto& consent = m_environment->consentText; consent && !consent->isEmpty()) {
        const auto key = firstOf(m_rootPayload->keyNamed(QStringLiteral("ConsentText")));
        const PreferenceKey::KeyMap* languages = key ? key->value().keyMap() : nullptr;
        if (const auto entry = languages ? languages->value(QStringLiteral("default")) : nullptr) {
            entry->setValue(plist::Value(*consent));
            m_preferencesDefaults.insert(consentTextDefaultName, entry);
        }
    }
}

Expected<Profile::Pointer, Profile::Errors>
Profile::parseProfile(const QByteArray& data, const DomainList& domains,
                      std::shared_ptr<const ProfileEnvironment> environment) {
    Pointer profile(new Profile(domains, std::move(environment)));
    QStringList signers;
    auto read = readRootDictionary(data, *profile->m_environment, signers);
    if (!read)
        return fail(read.error());
    plist::Dictionary root = std::move(read.value());
    if (const auto error = checkPayloadType(root)) {
        // A list of payloads under another word is a profile spelt wrong, not a payload.
        const auto type = root.string(payloadTypeName);
        if (*error != Errors::profileParsingFailedUnknown || !type || type->isEmpty() ||
            root.array(payloadContentName))
            return fail(*error);
        return wrapSinglePayload(root, domains, profile->m_environment);
    }

    std::optional<plist::Dictionary> znth;
    if (const plist::Dictionary* properties = root.dictionary(znthProfilePropertiesName)) {
        znth = *properties;
        root.remove(znthProfilePropertiesName);
    }
    // Entries of the root that its domain doesn't describe stay with the root.
    plist::Dictionary rootKeys = root;
    rootKeys.remove(payloadContentName);
    if (const auto sealed = root.data(encryptedPayloadContentName)) {
        profile->m_encryptedPayloadContent = sealed;
        rootKeys.remove(encryptedPayloadContentName);
    }
    const auto rootDomain = profile->rootDomain();
    if (!rootDomain)
        return fail(Errors::profileParsingFailedUnknown);
    profile->m_rootPayload = Payload::make(rootDomain, profile, profile->m_environment, rootKeys);

    // Sealed payloads stand in for the open ones.
    const plist::Array* content = root.array(payloadContentName);
    if (!content && !profile->m_encryptedPayloadContent)
        return fail(Errors::profileParsingFailedUnknown);
    if (content)
        profile->readPayloadContent(*content);
    profile->adoptSigners(signers);
    if (znth) {
        profile->m_znthProfileProperties = std::move(znth);
        profile->addPayloadForNewProfile();
    }
    return profile;
}

Expected<Profile::Pointer, Profile::Errors>
Profile::wrapSinglePayload(const plist::Dictionary& payload, const DomainList& domains,
                           std::shared_ptr<const ProfileEnvironment> environment) {
    Pointer profile = makeNewProfile(domains, std::move(environment));
    if (!profile)
        return fail(Errors::profileParsingFailedUnknown);
    profile->readPayloadContent(plist::Array{plist::Value(payload)});
    profile->m_wrappedSinglePayload = true;
    return profile;
}

Expected<plist::Dictionary, Profile::Errors>
Profile::readRootDictionary(const QByteArray& data, const ProfileEnvironment& environment,
                            QStringList& signers) {
    auto read = plist::PlistReader::read(data);
    if (!read && environment.signingServices) {
        if (const auto signedContent = environment.signingServices->readSignedContent(data)) {
            signers = signedContent->signerCommonNames;
            read = plist::PlistReader::read(signedContent->content);
        }
    }
    if (!read || !read->root.isDictionary())
        return fail(Errors::profileParsingFailedUnknown);
    return *read->root.dictionary();
}

std::optional<Profile::Errors> Profile::checkPayloadType(const plist::Dictionary& root) {
    const auto type = root.string(payloadTypeName);
    if (type == QStringLiteral("Configuration"))
        return std::nullopt;
    if (type == QStringLiteral("Profile Service"))
        return Errors::profileParsingFailedProfileServicePayload;
    if (type == QStringLiteral("Enrollment Service"))
        return Errors::profileParsingFailedEnrollmentServicePayload;
    return Errors::profileParsingFailedUnknown;
}

qsizetype Profile::heldValueCount() const {
    qsizetype count = 0;
    QList<Payload::Pointer> payloads = m_configurationPayloads;
    if (m_rootPayload)
        payloads.prepend(m_rootPayload);
    for (const auto& payload : payloads) {
        for (const auto& place : payload->heldValuePlaces())
            count += place.key->heldEntries().size();
    }
    return count;
}

void Profile::readPayloadContent(const plist::Array& content) {
    const Pointer self = shared_from_this();
    for (const plist::Value& element : content) {
        const plist::Dictionary* dictionary = element.dictionary();
        const auto type = dictionary ? dictionary->string(payloadTypeName) : std::nullopt;
        if (!type || type->isEmpty()) {
            m_malformedPayloadContentRemoved = true;
            continue;
        }
        if (const auto domain = domainForType(*type))
            m_configurationPayloads.append(Payload::make(domain, self, m_environment, *dictionary));
        else
            m_unfamiliarPayloads.append(*dictionary);
    }
}

void Profile::adoptSigners(const QStringList& signers) {
    if (signers.isEmpty())
        return;
    const QStringList available = m_environment->signingServices
                                      ? m_environment->signingServices->identityCommonNames()
                                      : QStringList();
    const auto shared = std::find_if(signers.begin(), signers.end(),
                                     [&](const QString& signer) { return available.contains(signer); });
    if (shared != signers.end())
        m_saveSignedWithCommonName = *shared;
    else
        m_loadedSignedButCannotBeSignedWithLoadedIdentity = true;
}

// A profile that the sibling product created empty asks for its first payload.
void Profile::addPayloadForNewProfile() {
    if (m_znthProfileProperties->boolean(QStringLiteral("IsNewProfile")) != true)
        return;
    const auto type = m_znthProfileProperties->string(payloadTypeName);
    const auto domain = type ? domainForType(*type) : nullptr;
    if (!domain || domain->domainString().isEmpty())
        return;
    if (domain->singlePayload() && hasPayloadOfType(domain->domainString()))
        return;
    addPayload(domain);
}

std::shared_ptr<const PFMDomain> Profile::rootDomain() const {
    const auto root = std::find_if(m_domains.begin(), m_domains.end(),
                                   [](const auto& domain) { return domain->domainString().isEmpty(); });
    return root == m_domains.end() ? nullptr : *root;
}

std::shared_ptr<const PFMDomain> Profile::domainForType(const QString& payloadType) const {
    const auto found = std::find_if(m_domains.begin(), m_domains.end(), [&](const auto& domain) {
        return domain->domainString() == payloadType;
    });
    return found == m_domains.end() ? nullptr : *found;
}

bool Profile::hasPayloadOfType(const QString& payloadType) const {
    return std::any_of(
        m_configurationPayloads.begin(), m_configurationPayloads.end(),
        [&](const auto& payload) { return payload->domainPrototype().domainString() == payloadType; });
}

std::shared_ptr<PreferenceKey> Profile::preferencesDefault(const QString& name) const {
    return m_preferencesDefaults.value(name).lock();
}

Payload::Pointer Profile::addPayload(const std::shared_ptr<const PFMDomain>& domain, bool announce) {
    auto payload =
        Payload::makeNewPayload(domain, shared_from_this(), m_environment, makeUniquePayloadUUID());
    m_configurationPayloads.append(payload);
    if (announce)
        keyDidChange(payload.get(), nullptr);
    else
        followChange(payload.get(), nullptr);
    return payload;
}

Payload::Pointer Profile::addPayloadFromFile(const std::shared_ptr<const PFMDomain>& domain,
                                             const QString& filePath) {
    auto payload = Payload::makeNewPayloadFromFile(domain, shared_from_this(), m_environment,
                                                   makeUniquePayloadUUID(), filePath);
    m_configurationPayloads.append(payload);
    keyDidChange(payload.get(), nullptr);
    return payload;
}

void Profile::removePayload(Payload::Pointer payload) {
    // Taken by value: the caller may pass an element of the very list that
    // is about to lose it.
    if (m_configurationPayloads.removeAll(payload) > 0)
        keyDidChange(payload.get(), nullptr);
}

void Profile::insertPayload(const Payload::Pointer& payload, qsizetype index) {
    if (m_configurationPayloads.contains(payload))
        return;
    m_configurationPayloads.insert(std::clamp<qsizetype>(index, 0, m_configurationPayloads.size()), payload);
    keyDidChange(payload.get(), nullptr);
}

QList<Profile::PlacedUnfamiliarPayload> Profile::removeUnfamiliarPayloads(const QStringList& payloadTypes) {
    QList<PlacedUnfamiliarPayload> removed;
    QList<plist::Dictionary> kept;
    for (qsizetype index = 0; index < m_unfamiliarPayloads.size(); ++index) {
        const plist::Dictionary& payload = m_unfamiliarPayloads[index];
        const auto type = payload.string(payloadTypeName);
        if (type && payloadTypes.contains(*type))
            removed.append({index, payload});
        else
            kept.append(payload);
    }
    if (removed.isEmpty())
        return removed;
    SelfChangeScope scope(m_performingSelfChange, SelfChange::removingUnfamiliarPayloads);
    m_unfamiliarPayloads = std::move(kept);
    announceChange(nullptr, nullptr);
    return removed;
}

// In ascending order each place is already right when its payload goes back.
void Profile::restoreUnfamiliarPayloads(const QList<PlacedUnfamiliarPayload>& removed) {
    if (removed.isEmpty())
        return;
    SelfChangeScope scope(m_performingSelfChange, SelfChange::removingUnfamiliarPayloads);
    for (const PlacedUnfamiliarPayload& placed : removed)
        m_unfamiliarPayloads.insert(std::clamp<qsizetype>(placed.index, 0, m_unfamiliarPayloads.size()),
                                    placed.payload);
    announceChange(nullptr, nullptr);
}

QString Profile::makeUniquePayloadUUID() const {
    QSet<QString> used;
    if (m_rootPayload) {
        if (const auto uuid = m_rootPayload->stringValue(payloadUUIDName))
            used.insert(*uuid);
    }
    for (const auto& payload : m_configurationPayloads) {
        if (const auto uuid = payload->stringValue(payloadUUIDName))
            used.insert(*uuid);
    }
    QString uuid = m_environment->uuids->makeUUIDString();
    while (used.contains(uuid))
        uuid = m_environment->uuids->makeUUIDString();
    return uuid;
}

QList<Profile::ValidationError> Profile::validationErrors() const {
    QList<ValidationError> errors;
    QSet<QString> uuids;
    QSet<QString> identifiers;
    if (const auto uuid = m_rootPayload->stringValue(payloadUUIDName))
        uuids.insert(*uuid);
    if (const auto identifier = m_rootPayload->stringValue(payloadIdentifierName))
        identifiers.insert(*identifier);

    for (const auto& payload : m_configurationPayloads) {
        const auto report = [&](ValidationErrorKind kind) { errors.append({kind, payload}); };
        const auto uuidKey = payload->payloadUUIDKey();
        if (const auto uuid = payload->stringValue(payloadUUIDName)) {
            if (uuids.contains(*uuid))
                report(ValidationErrorKind::nonUniquePayloadUUIDFound);
            else
                uuids.insert(*uuid);
        } else if (uuidKey && uuidKey->required()) {
            report(ValidationErrorKind::noRequiredPayloadUUIDKeyFound);
        }

        const auto identifierKey = payload->payloadIdentifierKey();
        if (!identifierKey)
            continue;
        const auto identifier = payload->stringValue(payloadIdentifierName);
        if (identifier) {
            if (identifiers.contains(*identifier))
                report(ValidationErrorKind::nonUniquePayloadIdentifierFound);
            else
                identifiers.insert(*identifier);
        } else if (identifierKey->required()) {
            report(ValidationErrorKind::noRequiredPayloadIdentifierFound);
        }
        const auto& defaultValue = identifierKey->prototype().defaultValue();
        if (identifier && defaultValue && defaultValue->toString() == identifier)
            report(ValidationErrorKind::identifierValueEqualsItsDefault);
    }
    return errors;
}

// Runs silently before every save. A payload that lacks a required
// identifier isn't repaired: validation reports it to the user.
void Profile::repairValidationErrors() {
    QList<Payload*> identifiersRepaired;
    for (const auto& error : validationErrors()) {
        Payload* payload = error.payload.get();
        switch (error.kind) {
        case ValidationErrorKind::nonUniquePayloadUUIDFound:
            if (const auto uuidKey = payload->payloadUUIDKey())
                uuidKey->setValue(plist::Value(makeUniquePayloadUUID()));
            break;
        case ValidationErrorKind::nonUniquePayloadIdentifierFound:
        case ValidationErrorKind::identifierValueEqualsItsDefault:
            if (!identifiersRepaired.contains(payload)) {
                identifiersRepaired.append(payload);
                payload->generateIdentifier();
            }
            break;
        default:
            break;
        }
    }
}

plist::Dictionary Profile::profileDictionary() const {
    plist::Dictionary root = m_rootPayload->writeOutDictionary();
    plist::Array content;
    for (const auto& payload : m_configurationPayloads)
        content.append(plist::Value(payload->writeOutDictionary()));
    for (const auto& unfamiliar : m_unfamiliarPayloads)
        content.append(plist::Value(unfamiliar));
    if (m_encryptedPayloadContent) {
        root.insert(encryptedPayloadContentName, plist::Value(*m_encryptedPayloadContent));
        // Payloads added beside sealed ones stay open rather than be lost.
        if (content.isEmpty())
            return root;
    }
    root.insert(payloadContentName, plist::Value(std::move(content)));
    return root;
}

// Payloads still sealed for others can't be sealed for new recipients.
std::optional<plist::Dictionary> Profile::sealedProfileDictionary() const {
    plist::Dictionary root = profileDictionary();
    if (m_encryptForCertificates.isEmpty())
        return root;
    const auto& services = m_environment->encryptionServices;
    if (m_encryptedPayloadContent || !services)
        return std::nullopt;
    const auto content = plist::XmlWriter::write(root.value(payloadContentName));
    if (!content)
        return std::nullopt;
    const auto sealed = services->encrypt(*content, m_encryptForCertificates);
    if (!sealed)
        return std::nullopt;
    root.remove(payloadContentName);
    root.insert(encryptedPayloadContentName, plist::Value(*sealed));
    return root;
}

Expected<QList<EnvelopeRecipient>, Profile::EncryptionFailure>
Profile::decryptPayloadContent(const QString& identityName) {
    const auto& services = m_environment->encryptionServices;
    if (!m_encryptedPayloadContent)
        return fail(EncryptionFailure::malformedEnvelope);
    if (!services)
        return fail(EncryptionFailure::keyUnavailable);
    auto decrypted = services->decrypt(*m_encryptedPayloadContent, identityName);
    if (!decrypted)
        return fail(decrypted.error());
    const auto read = plist::PlistReader::read(decrypted->content);
    const plist::Array* payloads = read ? read->root.array() : nullptr;
    if (!payloads)
        return fail(EncryptionFailure::notAPayloadArray);
    readPayloadContent(*payloads);
    m_encryptedPayloadContent.reset();
    m_encryptForCertificates = decrypted->recipientCertificates;
    return decrypted->unresolvedRecipients;
}

std::optional<QByteArray> Profile::profileData(const std::optional<QString>& commonName) {
    repairValidationErrors();
    const auto dictionary = sealedProfileDictionary();
    if (!dictionary)
        return std::nullopt;
    const auto bytes = plist::XmlWriter::write(plist::Value(*dictionary));
    if (!bytes)
        return std::nullopt;
    const auto name = signingName(commonName);
    if (!name)
        return std::nullopt;
    if (!name->has_value()) {
        m_saveSignedWithCommonName.reset();
        return *bytes;
    }
    const auto signedBytes = m_environment->signingServices->sign(*bytes, **name);
    if (!signedBytes)
        return std::nullopt;
    m_saveSignedWithCommonName = *name;
    return signedBytes;
}

Expected<std::optional<QString>, Profile::SigningNameError>
Profile::signingName(const std::optional<QString>& commonName) const {
    const std::optional<QString> name = commonName ? commonName : m_saveSignedWithCommonName;
    if (!name || name->isEmpty())
        return std::optional<QString>();
    const auto& signing = m_environment->signingServices;
    if (!signing || !signing->identityCommonNames().contains(*name))
        return fail(SigningNameError::unknownIdentity);
    return name;
}

std::optional<QString> Profile::payloadIdentifier() const {
    return m_rootPayload->stringValue(payloadIdentifierName);
}

void Profile::keyDidChange(Payload* payload, PreferenceKey* key) {
    announceChange(payload, key);
    followChange(payload, key);
}

void Profile::announceChange(Payload* payload, PreferenceKey* key) {
    if (const auto delegate = m_delegate.lock())
        delegate->profileDidChange(*this, payload, key);
}

// "HasRemovalPasscode" of the root and the removal password payload follow
// each other, whichever side the user changes.
void Profile::followChange(Payload* payload, PreferenceKey* key) {
    if (m_performingSelfChange != SelfChange::none || !payload || !m_rootPayload)
        return;
    if (payload == m_rootPayload.get() && key && key->name() == removalPasscodeName)
        followRemovalPasscode(*key);
    else if (!key && payload->domainPrototype().domainString() == removalPasswordType)
        followRemovalPasswordPayloads();
}

void Profile::followRemovalPasscode(const PreferenceKey& key) {
    const plist::Value* value = key.value().plistValue();
    const auto number = value ? value->numberAsReal() : std::nullopt;
    if (value && !number)
        return;
    SelfChangeScope scope(m_performingSelfChange, SelfChange::addingRemovalPasswordPayload);
    if (number && *number != 0) {
        if (hasPayloadOfType(removalPasswordType))
            return;
        if (const auto domain = domainForType(removalPasswordType)) {
            addPayload(domain);
            // The window shows the payload the profile made itself, as it
            // drops those it removes.
            if (const auto delegate = m_delegate.lock())
                delegate->profileRemovalPasswordPayloadCountDidChange(*this);
        }
        return;
    }
    m_configurationPayloads.removeIf(
        [](const auto& payload) { return payload->domainPrototype().domainString() == removalPasswordType; });
    if (const auto delegate = m_delegate.lock())
        delegate->profileRemovalPasswordPayloadCountDidChange(*this);
}

void Profile::followRemovalPasswordPayloads() {
    SelfChangeScope scope(m_performingSelfChange, SelfChange::addingRemovalPasswordPayload);
    const auto key = firstOf(m_rootPayload->keyNamed(removalPasscodeName));
    if (!key)
        return;
    if (hasPayloadOfType(removalPasswordType))
        key->setValue(plist::Value(true));
    else
        key->setValue(PreferenceKeyValue());
}

} // namespace quorlin
