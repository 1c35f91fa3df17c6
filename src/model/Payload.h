#pragma once

#include "model/PreferenceKey.h"
#include "model/ProfileEnvironment.h"
#include "plist/Value.h"
#include "schema/PFMDomain.h"

#include <QList>
#include <QString>

#include <memory>
#include <optional>

namespace quorlin {

class Profile;

// One payload of a profile: a domain and the tree of keys that holds its
// values. Whatever the domain doesn't describe at the top of a read payload
// is kept aside and written back unchanged; what it can't bind further down
// is held by the keys (see HeldValues).
class Payload : public std::enable_shared_from_this<Payload> {
public:
    using Pointer = std::shared_ptr<Payload>;
    using DomainPointer = std::shared_ptr<const PFMDomain>;

    // The payload of the domain, read from `dictionary` when one is given.
    // The environment supplies UUIDs and the identifier prefix when the
    // payload has no profile; with a profile, the profile's is used.
    static Pointer make(const DomainPointer& domain, const std::shared_ptr<Profile>& profile,
                        std::shared_ptr<const ProfileEnvironment> environment,
                        const std::optional<plist::Dictionary>& dictionary = std::nullopt);
    // A new payload whose "PayloadUUID" is `uuid`, with its identifier generated.
    static Pointer makeNewPayload(const DomainPointer& domain, const std::shared_ptr<Profile>& profile,
                                  std::shared_ptr<const ProfileEnvironment> environment, const QString& uuid);
    // makeNewPayload, with the file's bytes and name in the domain's file keys.
    static Pointer makeNewPayloadFromFile(const DomainPointer& domain,
                                          const std::shared_ptr<Profile>& profile,
                                          std::shared_ptr<const ProfileEnvironment> environment,
                                          const QString& uuid, const QString& filePath);

    Payload(const Payload&) = delete;
    Payload& operator=(const Payload&) = delete;

    const PFMDomain& domainPrototype() const { return *m_domain; }
    const DomainPointer& domainPointer() const { return m_domain; }
    const PreferenceKey::KeyList& preferenceKeys() const { return m_preferenceKeys; }
    std::shared_ptr<Profile> profile() const { return m_profile.lock(); }
    void setProfile(const std::shared_ptr<Profile>& profile) { m_profile = profile; }
    const std::optional<plist::Dictionary>& unfamiliarPreferenceKeys() const {
        return m_unfamiliarPreferenceKeys;
    }
    // The user may clear them in the form, and undo puts them back.
    void clearUnfamiliarPreferenceKeys() { m_unfamiliarPreferenceKeys.reset(); }
    void setUnfamiliarPreferenceKeys(std::optional<plist::Dictionary> keys) {
        m_unfamiliarPreferenceKeys = std::move(keys);
    }

    plist::Dictionary writeOutDictionary() const;
    // A key whose held values the payload writes, and where it stands:
    // names joined with ".", items as "[index]" ("Tiles[2].data").
    struct HeldPlace {
        PreferenceKey::Pointer key;
        QString path;
    };
    // Every key holding values, depth-first, array items included.
    QList<HeldPlace> heldValuePlaces() const;
    PreferenceKey::KeyList keyNamed(const QString& name) const;
    PreferenceKey::Pointer keyAtPath(const QString& path) const;
    PreferenceKey::Pointer payloadUUIDKey() const;
    PreferenceKey::Pointer payloadIdentifierKey() const;
    PreferenceKey::Pointer payloadDisplayNameKey() const;
    std::optional<QString> displayName() const;
    // The string value of a top-level key, if it holds one.
    std::optional<QString> stringValue(const QString& keyName) const;

    // Sets "PayloadIdentifier" from the domain's default and the UUID, or
    // from the default identifier prefix; nothing without that key.
    std::optional<QString> generateIdentifier();
    // The payload as a preference file, without the "Payload..." keys when asked.
    bool exportToFile(const QString& filePath, bool stripPayloadKeys) const;

private:
    Payload(DomainPointer domain, std::shared_ptr<const ProfileEnvironment> environment);

    void buildKeys(const std::optional<plist::Dictionary>& dictionary);
    void linkConditionals();
    void linkConditionals(const PreferenceKey::Pointer& key);
    QString makeUUIDString() const;

    DomainPointer m_domain;
    PreferenceKey::KeyList m_preferenceKeys;
    std::weak_ptr<Profile> m_profile;
    std::optional<plist::Dictionary> m_unfamiliarPreferenceKeys;
    std::shared_ptr<const ProfileEnvironment> m_environment;
};

} // namespace quorlin
