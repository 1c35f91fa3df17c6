#include "workspace/HeldValuePaths.h"

#include "validation/HeldValueWords.h"

namespace quorlin {

QList<HeldValuePaths::Place> HeldValuePaths::of(const Payload& payload) {
    QList<Place> places;
    for (const auto& key : payload.preferenceKeys())
        collect(*key, {key->name()}, places);
    return places;
}

void HeldValuePaths::collect(const PreferenceKey& key, const PropertyListEdit::Path& path,
                             QList<Place>& places) {
    for (const auto& entry : key.heldEntries()) {
        const QString reason = HeldValueWords::entryText(key, entry);
        // A held own value is what the key writes: nothing below it is bound.
        if (entry.place.isEmpty()) {
            places.append({path, reason});
            return;
        }
        if (entry.reason == HeldValues::Reason::undescribed)
            places.append({path + PropertyListEdit::Path{entry.place}, reason});
    }
    if (key.excluded())
        return;
    if (key.prototype().kind() == PFMKeyPrototype::Kind::array) {
        collectItems(key, path, places);
    } else if (const auto children = key.children()) {
        for (const auto& child : *children)
            collect(*child, path + PropertyListEdit::Path{child->name()}, places);
    }
}

// Held items go back at the indices they were read at, between the items
// that are written, as the key writes them.
void HeldValuePaths::collectItems(const PreferenceKey& key, const PropertyListEdit::Path& path,
                                  QList<Place>& places) {
    PreferenceKey::KeyList written;
    for (const auto& item : key.children().value_or(PreferenceKey::KeyList()))
        if (item->writeOutValue())
            written.append(item);
    int position = 0;
    qsizetype next = 0;
    for (const HeldValues::Item& held : key.heldValues().items) {
        for (; position < held.index && next < written.size(); ++position)
            collect(*written.at(next++), path + PropertyListEdit::Path{position}, places);
        const HeldValues::Entry entry{HeldValues::Reason::misfitItem, QStringLiteral("[%1]").arg(held.index),
                                      held.value};
        places.append({path + PropertyListEdit::Path{position++}, HeldValueWords::entryText(key, entry)});
    }
    for (; next < written.size(); ++position)
        collect(*written.at(next++), path + PropertyListEdit::Path{position}, places);
}

} // namespace quorlin
