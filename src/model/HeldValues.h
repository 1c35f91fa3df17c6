#pragma once

#include "plist/Value.h"

#include <QList>
#include <QString>

#include <optional>

namespace quorlin {

// What a file holds at one key that the key's prototype can't bind: kept at
// its place and written back unchanged, so that opening and saving a file
// never changes what it tells a device. A key holds its own value (of the
// wrong class, one a rule leaves out, or a ghost's), entries of its
// dictionary that no subkey describes, and items of its array that fit no
// item prototype.
struct HeldValues {
    enum class Reason { wrongClass, excluded, undescribed, misfitItem, ghost };

    struct Own {
        Reason reason = Reason::wrongClass;
        plist::Value value;
        friend bool operator==(const Own&, const Own&) = default;
    };
    struct Item {
        // The item's index in the written array: as it was read, then moved
        // along with the rows around it (see PreferenceKey::setValue).
        qsizetype index = 0;
        plist::Value value;
        friend bool operator==(const Item&, const Item&) = default;
    };
    // One held value as a list shows it.
    struct Entry {
        Reason reason = Reason::wrongClass;
        // Empty for the key's own value, the entry's name, or "[index]".
        QString place;
        plist::Value value;
        friend bool operator==(const Entry&, const Entry&) = default;
    };

    std::optional<Own> own;
    plist::Dictionary subkeys;
    QList<Item> items;

    bool isEmpty() const { return !own && subkeys.isEmpty() && items.isEmpty(); }
    qsizetype count() const { return (own ? 1 : 0) + subkeys.size() + items.size(); }
    // The written items with the held ones put back at their indices; an
    // index past the end appends.
    plist::Array mergedItems(plist::Array written) const;
    // Entries of the held subkeys and items; the own value is told by the key,
    // which knows whether it is in effect.
    QList<Entry> containerEntries() const;

    friend bool operator==(const HeldValues&, const HeldValues&) = default;
};

} // namespace quorlin
