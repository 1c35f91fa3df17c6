#pragma once

#include "model/PreferenceKey.h"
#include "model/PreferenceKeyValue.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace quorlin {

// Dotted paths into a key, in the forms the field controls use: "value"
// (the key's own value), "value.Name.value" (a subkey of a dictionary
// value, then its value), "prototype.rangeList", "prototype.suggestions".
// A path that leads nowhere reads as nothing and has no key to write to.
class KeyPath {
public:
    explicit KeyPath(QString path);

    const QString& text() const { return m_text; }
    // The value the path reads, or nothing.
    PreferenceKeyValue read(const PreferenceKey::Pointer& root) const;
    // The key whose "value" the path ends in, or null when the path ends
    // elsewhere (a prototype field) or leads nowhere.
    PreferenceKey::Pointer writableKey(const PreferenceKey::Pointer& root) const;
    // The key a path without the final "value" reaches: a table cell's
    // "value.Name" gives the row's subkey "Name".
    PreferenceKey::Pointer resolveKey(const PreferenceKey::Pointer& root) const;

    // Where a key sits in its payload: top-level name, then subkey names and
    // item indexes, joined by "/" ("Accounts/2/Server"). It identifies the
    // place of an edit, so that typing in one field can merge into one step.
    static QString identity(const PreferenceKey& key);

private:
    QString m_text;
    QStringList m_components;
};

} // namespace quorlin
