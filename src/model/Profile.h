#pragma once

#include "model/Payload.h"
#include "model/ProfileDelegate.h"
#include "model/ProfileEnvironment.h"
#include "plist/Expected.h"
#include "plist/Value.h"
#include "schema/PFMDomain.h"

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QString>

#include <memory>
#include <optional>

namespace quorlin {

// A whole configuration profile under edit: the root payload, the
// configuration payloads, the payload dictionaries that no domain
// describes, and the signing state. The domains it binds payloads to are
// given to it, so that it doesn't depend on where they come from.
class Profile : public std::enable_shared_from_this<Profile> {
public:
    using Pointer = std::shared_ptr<Profile>;
    using DomainList = QList<std::shared_ptr<const PFMDomain>>;

    enum class Errors {
        profileParsingFailedUnknown,
        profileParsingFailedProfileServicePayload,
        profileParsingFailedEnrollmentServicePayload
    };

    enum class ValidationErrorKind {
        nonUniquePayloadUUIDFound,
        nonUniquePayloadIdentifierFound,
        noRequiredPayloadUUIDKeyFound,
        noRequiredPayloadIdentifierFound,
        identifierValueEqualsItsDefault
    };
    struct ValidationError {
        ValidationErrorKind kind;
        Payload::Pointer payload;
        friend bool operator==(const ValidationError&, const ValidationError&) = default;
    };

    enum class SelfChange { none, addingRemovalPasswordPayload, removingUnfamiliarPayloads };
    // An unfamiliar payload and its place in the list it was taken from.
    struct PlacedUnfamiliarPayload {
        qsizetype index = 0;
        plist::Dictionary payload;
        friend bool operator==(const PlacedUnfamiliarPayload&, const PlacedUnfamiliarPayload&) = default;
    };
    enum class SigningNameError { unknownIdentity };
    using EncryptionFailure = ProfileEncryptionServices::Failure;

    // Nothing when no domain has an empty payload type, the root's.
    static Pointer makeNewProfile(const DomainList& domains,
                                  std::shared_ptr<const ProfileEnvironment> environment);
    static Expected<Pointer, Errors> parseProfile(const QByteArray& data, const DomainList& domains,
                                                  std::shared_ptr<const ProfileEnvironment> environment);

    Profile(const Profile&) = delete;
    Profile& operator=(const Profile&) = delete;

    const Payload::Pointer& rootPayload() const { return m_rootPayload; }
    const QList<Payload::Pointer>& configurationPayloads() const { return m_configurationPayloads; }
    const QList<plist::Dictionary>& unfamiliarPayloads() const { return m_unfamiliarPayloads; }
    // Keys filled from the preferences: ".PayloadOrganization", ".ConsentText".
    std::shared_ptr<PreferenceKey> preferencesDefault(const QString& name) const;
    bool loadedSignedButCannotBeSignedWithLoadedIdentity() const {
        return m_loadedSignedButCannotBeSignedWithLoadedIdentity;
    }
    const std::optional<QString>& saveSignedWithCommonName() const { return m_saveSignedWithCommonName; }
    void setSaveSignedWithCommonName(const std::optional<QString>& name) {
        m_saveSignedWithCommonName = name;
    }
    const std::optional<plist::Dictionary>& znthProfileProperties() const { return m_znthProfileProperties; }
    bool malformedPayloadContentRemoved() const { return m_malformedPayloadContentRemoved; }
    // The file was one payload rather than a profile (as consoles export
    // them), and is now the one payload of a new profile.
    bool wrappedSinglePayload() const { return m_wrappedSinglePayload; }
    const DomainList& domains() const { return m_domains; }
    // The file's sealed "EncryptedPayloadContent", kept byte for byte until
    // it is decrypted.
    const std::optional<QByteArray>& encryptedPayloadContent() const { return m_encryptedPayloadContent; }
    // Opens the sealed payloads with one of the user's identities: they become
    // ordinary payloads, and saves seal them again for the recipients whose
    // certificates were found. Gives the recipients that weren't; on failure
    // nothing changes.
    Expected<QList<EnvelopeRecipient>, EncryptionFailure> decryptPayloadContent(const QString& identityName);
    // DER certificates that saves seal the payloads for; none saves them open.
    const QList<QByteArray>& encryptForCertificates() const { return m_encryptForCertificates; }
    void setEncryptForCertificates(QList<QByteArray> certificates) {
        m_encryptForCertificates = std::move(certificates);
    }
    const ProfileEnvironment& environment() const { return *m_environment; }
    void setDelegate(const std::weak_ptr<ProfileDelegate>& delegate) { m_delegate = delegate; }

    Payload::Pointer addPayload(const std::shared_ptr<const PFMDomain>& domain, bool announce = true);
    Payload::Pointer addPayloadFromFile(const std::shared_ptr<const PFMDomain>& domain,
                                        const QString& filePath);
    void removePayload(Payload::Pointer payload);
    // Puts a payload that removePayload took out back at its former place,
    // so that undoing a removal gives back the same bytes.
    void insertPayload(const Payload::Pointer& payload, qsizetype index);
    QString makeUniquePayloadUUID() const;
    // Takes out every unfamiliar payload whose "PayloadType" is one of
    // `payloadTypes`; what it returns, in ascending order of place, is what
    // restoreUnfamiliarPayloads needs to give back the same bytes.
    QList<PlacedUnfamiliarPayload> removeUnfamiliarPayloads(const QStringList& payloadTypes);
    void restoreUnfamiliarPayloads(const QList<PlacedUnfamiliarPayload>& removed);

    QList<ValidationError> validationErrors() const;
    // How many values the payloads hold against their manifests (see HeldValues).
    qsizetype heldValueCount() const;
    void repairValidationErrors();
    // The bytes to save, signed when a signer applies; nothing on failure.
    // Repairs duplicate and default identifiers first.
    std::optional<QByteArray> profileData(const std::optional<QString>& commonName = std::nullopt);
    // The plist that profileData serialises, without repairing.
    plist::Dictionary profileDictionary() const;
    // The identity that signs: the given name, else the one remembered.
    // Nothing (or an empty name) means no signing; a name that the signing
    // services don't know fails.
    Expected<std::optional<QString>, SigningNameError>
    signingName(const std::optional<QString>& commonName) const;
    std::optional<QString> payloadIdentifier() const;

    void keyDidChange(Payload* payload, PreferenceKey* key);

    std::shared_ptr<const PFMDomain> rootDomain() const;
    std::shared_ptr<const PFMDomain> domainForType(const QString& payloadType) const;

private:
    Profile(DomainList domains, std::shared_ptr<const ProfileEnvironment> environment);

    static Expected<plist::Dictionary, Errors>
    readRootDictionary(const QByteArray& data, const ProfileEnvironment& environment, QStringList& signers);
    static std::optional<Errors> checkPayloadType(const plist::Dictionary& root);
    static Expected<Pointer, Errors> wrapSinglePayload(const plist::Dictionary& payload,
                                                       const DomainList& domains,
                                                       std::shared_ptr<const ProfileEnvironment> environment);
    void readPayloadContent(const plist::Array& content);
    std::optional<plist::Dictionary> sealedProfileDictionary() const;
    void adoptSigners(const QStringList& signers);
    void addPayloadForNewProfile();
    void applyPreferencesDefaults();
    bool hasPayloadOfType(const QString& payloadType) const;
    void followChange(Payload* payload, PreferenceKey* key);
    void followRemovalPasscode(const PreferenceKey& key);
    void followRemovalPasswordPayloads();
    void announceChange(Payload* payload, PreferenceKey* key);

    DomainList m_domains;
    std::shared_ptr<const ProfileEnvironment> m_environment;
    Payload::Pointer m_rootPayload;
    QList<Payload::Pointer> m_configurationPayloads;
    QList<plist::Dictionary> m_unfamiliarPayloads;
    QMap<QString, std::weak_ptr<PreferenceKey>> m_preferencesDefaults;
    bool m_loadedSignedButCannotBeSignedWithLoadedIdentity = false;
    std::optional<QString> m_saveSignedWithCommonName;
    std::optional<plist::Dictionary> m_znthProfileProperties;
    bool m_malformedPayloadContentRemoved = false;
    std::optional<QByteArray> m_encryptedPayloadContent;
    QList<QByteArray> m_encryptForCertificates;
    bool m_wrappedSinglePayload = false;
    std::weak_ptr<ProfileDelegate> m_delegate;
    SelfChange m_performingSelfChange = SelfChange::none;
};

} // namespace quorlin
