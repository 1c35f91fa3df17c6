#pragma once

#include "model/DateSource.h"
#include "model/PreferenceKey.h"

#include <QList>

#include <memory>

namespace quorlin {

// The rows of one table: the items of an array key, less those of other
// item prototypes when the table shows only one, and the making of new rows
// with the values a table never leaves unset.
class PreferenceKeyArrayController {
public:
    using PrototypePointer = PreferenceKey::PrototypePointer;

    explicit PreferenceKeyArrayController(std::shared_ptr<DateSource> dates);

    const PreferenceKey::Pointer& parentArrayKey() const { return m_parentArrayKey; }
    void setParentArrayKey(const PreferenceKey::Pointer& key) { m_parentArrayKey = key; }
    const PrototypePointer& prototypeForNewKey() const { return m_prototypeForNewKey; }
    void setPrototypeForNewKey(const PrototypePointer& prototype) { m_prototypeForNewKey = prototype; }
    // Only items of this prototype are rows; none shows every item.
    const PrototypePointer& filterPrototype() const { return m_filterPrototype; }
    void setFilterPrototype(const PrototypePointer& prototype) { m_filterPrototype = prototype; }

    // Every item of the key's value, in order.
    PreferenceKey::KeyList content() const;
    // The items that are rows.
    PreferenceKey::KeyList arrangedObjects() const;

    // Row indexes; kept sorted.
    const QList<int>& selectionIndexes() const { return m_selection; }
    void setSelectionIndexes(QList<int> indexes);

    // A new item under the parent key, filled in as the table wants it.
    PreferenceKey::Pointer newObject() const;

private:
    void fillInInitialValues(const PreferenceKey::Pointer& key) const;

    std::shared_ptr<DateSource> m_dates;
    PreferenceKey::Pointer m_parentArrayKey;
    PrototypePointer m_prototypeForNewKey;
    PrototypePointer m_filterPrototype;
    QList<int> m_selection;
};

} // namespace quorlin
