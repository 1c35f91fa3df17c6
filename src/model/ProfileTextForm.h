#pragma once

#include "model/ProfileComparison.h"
#include "plist/Value.h"
#include "schema/PFMKeyPrototype.h"

#include <QString>
#include <QStringList>

namespace quorlin {

// A profile as stable, readable text, for people and for line-based diff
// tools: one section per payload (the profile's own settings first, then the
// payloads by title, name and identifier), one line per value with its
// titles and key path, keys in the manifest's order. Payload UUIDs are left
// out, and stand as "<PayloadUUID>" in an identifier, so that the text of
// profiles alike in effect stays alike.
//
//   == Relay “Office” (com.quorlin.test.relay) ==
//   Account › Port (Account.Port): 8443
class ProfileTextForm {
public:
    explicit ProfileTextForm(const ProfileComparison::DomainList& domains);

    QString render(const plist::Dictionary& profile) const;

private:
    struct Place {
        QString path;
        QStringList titles;
        const PFMKeyPrototype* prototype = nullptr;
    };

    QString section(const plist::Dictionary& payload, bool isRoot) const;
    void appendDictionary(const plist::Dictionary& entries, const PFMKeyPrototypeList& prototypes,
                          const Place& place, QStringList& lines) const;
    void appendValue(const plist::Value& value, const Place& place, QStringList& lines) const;
    void appendArray(const plist::Array& items, const Place& place, QStringList& lines) const;
    static QString sortKey(const ProfileDifference& heading, const plist::Dictionary& payload);

    ProfileComparison m_comparison;
};

} // namespace quorlin
