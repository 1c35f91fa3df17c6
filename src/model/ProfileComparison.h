#pragma once

#include "model/ProfileDifference.h"
#include "plist/Value.h"
#include "schema/PFMDomain.h"
#include "schema/PFMKeyPrototype.h"

#include <QHash>
#include <QList>

#include <memory>

namespace quorlin {

// What really changed between two profiles: payloads paired as
// PayloadMatcher pairs them, then compared key by key along their manifests'
// trees. It reads the dictionaries as the files hold them, so keys and
// payloads that no manifest describes are compared too. A regenerated UUID
// alone is no difference.
class ProfileComparison {
public:
    using DomainList = QList<std::shared_ptr<const PFMDomain>>;
    struct Options {
        // Leave changes of "PayloadIdentifier" out.
        bool ignoreIdentifiers = false;
    };

    explicit ProfileComparison(const DomainList& domains)
        : ProfileComparison(domains, Options()) {}
    ProfileComparison(const DomainList& domains, Options options);

    // The root dictionaries of the two profiles (a signed file's content).
    // The profile's own settings come first, then the payloads in the new
    // profile's order, the removed ones last.
    QList<ProfileDifference> compare(const plist::Dictionary& oldProfile,
                                     const plist::Dictionary& newProfile) const;

    // The domain that describes a payload dictionary: by "PayloadType", and
    // the root domain for the profile's own.
    std::shared_ptr<const PFMDomain> domainFor(const plist::Dictionary& payload, bool isRoot) const;
    // The payload's words for the differences of one payload: type, title and name.
    ProfileDifference payloadHeading(const plist::Dictionary& payload, bool isRoot) const;
    static QList<plist::Dictionary> configurationPayloads(const plist::Dictionary& profile);
    static plist::Dictionary rootSettings(const plist::Dictionary& profile);

private:
    // Where the walk is: the path and titles so far, and what the
    // differences found there are added to.
    struct Place {
        QString path;
        QStringList titles;
        const PFMKeyPrototype* prototype = nullptr;
    };
    struct Walk {
        ProfileDifference heading;
        QList<ProfileDifference> found;
        QString oldUUID;
        QString newUUID;
    };

    void comparePayloads(const plist::Dictionary* oldPayload, const plist::Dictionary* newPayload,
                         bool isRoot, QList<ProfileDifference>& differences) const;
    void compareDictionaries(const plist::Dictionary& oldEntries, const plist::Dictionary& newEntries,
                             const PFMKeyPrototypeList& prototypes, const Place& place, Walk& walk) const;
    void compareValues(const plist::Value& oldValue, const plist::Value& newValue, const Place& place,
                       Walk& walk) const;
    void compareArrays(const plist::Array& oldItems, const plist::Array& newItems, const Place& place,
                       Walk& walk) const;
    bool isLeftOut(const QString& name, const plist::Dictionary& oldEntries,
                   const plist::Dictionary& newEntries, const Walk& walk) const;
    static void add(Walk& walk, ProfileDifference::Kind kind, const Place& place,
                    std::optional<plist::Value> oldValue, std::optional<plist::Value> newValue);
    static bool sameInEffect(const plist::Value& a, const plist::Value& b);

    QHash<QString, std::shared_ptr<const PFMDomain>> m_domainsByType;
    Options m_options;
};

} // namespace quorlin
