#pragma once

#include "model/HeldValues.h"
#include "model/PreferenceKey.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace quorlin {

// The words for values a key holds from its file but can't bind: what is
// wrong, and that the value stays until the user sets or removes it.
class HeldValueWords {
public:
    // One entry of `key.heldEntries()`.
    static QString entryText(const PreferenceKey& key, const HeldValues::Entry& entry);
    // Only what is wrong, as "The file holds a string here, where the manifest wants an integer".
    static QString reasonText(const PreferenceKey& key, const HeldValues::Entry& entry);
    // The text of the key's field: its first held value, with the number of
    // others; the items of an array speak through it. Nothing when it holds none.
    static std::optional<QString> fieldText(const PreferenceKey& key);
    // The value as one line for a list: "“text”", "42", "<dictionary of 3 entries>".
    static QString valueText(const plist::Value& value);
    // "a string", "an integer", ...
    static QString className(const plist::Value& value);
    // The rules of the manifest that leave the key out now, as "“A” is true and “B” is set".
    static QString exclusionText(const PreferenceKey& key);

private:
    static void collectBelow(const PreferenceKey& key, const QString& prefix, QStringList& texts);
};

} // namespace quorlin
