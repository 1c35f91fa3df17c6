#include "fields/PreferenceKeyArrayController.h"

#include "fields/InstrumentFactory.h"

#include <algorithm>

namespace quorlin {

namespace {

using Kind = PFMKeyPrototype::Kind;
using Types = InstrumentFactory::Types;

} // namespace

PreferenceKeyArrayController::PreferenceKeyArrayController(std::shared_ptr<DateSource> dates)
    : m_dates(std::move(dates)) {}

PreferenceKey::KeyList PreferenceKeyArrayController::content() const {
    if (!m_parentArrayKey)
        return {};
    if (const auto* items = m_parentArrayKey->value().keyList())
        return *items;
    return {};
}

PreferenceKey::KeyList PreferenceKeyArrayController::arrangedObjects() const {
    PreferenceKey::KeyList rows = content();
    if (m_filterPrototype)
        rows.removeIf([&](const auto& item) { return item->prototypePointer() != m_filterPrototype; });
    return rows;
}

void PreferenceKeyArrayController::setSelectionIndexes(QList<int> indexes) {
    std::sort(indexes.begin(), indexes.end());
    indexes.erase(std::unique(indexes.begin(), indexes.end()), indexes.end());
    m_selection = std::move(indexes);
}

PreferenceKey::Pointer PreferenceKeyArrayController::newObject() const {
    if (!m_prototypeForNewKey)
        return PreferenceKey::makeNew(PFMKeyPrototype::makeEmpty(), m_parentArrayKey);
    // A new conventional dictionary comes with a key for each named subkey.
    const auto key = PreferenceKey::makeNew(m_prototypeForNewKey, m_parentArrayKey);
    fillInInitialValues(key);
    return key;
}

// A table cell has no way to show "unset" for a date or a check box, so a
// new row holds a value there from the start.
void PreferenceKeyArrayController::fillInInitialValues(const PreferenceKey::Pointer& key) const {
    const PFMKeyPrototype& prototype = key->prototype();
    const Types type = InstrumentFactory::type(prototype, true);
    const bool unset = key->value().isAbsent();
    const auto& defaultValue = prototype.defaultValue();
    if (type == Types::string && prototype.kind() == Kind::array && unset && key->required()) {
        key->setEmptyValue();
    } else if (type == Types::date && prototype.kind() == Kind::date && unset) {
        const bool defaultIsDate = defaultValue && defaultValue->isDate();
        key->setValue(defaultIsDate ? *defaultValue : plist::Value(m_dates->now()));
    } else if (type == Types::boolean && unset &&
               (prototype.kind() == Kind::boolean || prototype.kind() == Kind::integer)) {
        const bool defaultIsNumber = defaultValue && defaultValue->numberAsReal();
        const plist::Value zero = prototype.kind() == Kind::boolean ? plist::Value(false) : plist::Value(0);
        key->setValue(defaultIsNumber ? *defaultValue : zero);
    }
    if (prototype.kind() == Kind::dictionary) {
        if (const auto* subkeys = key->value().keyMap()) {
            for (const auto& child : *subkeys)
                fillInInitialValues(child);
        }
    }
}

} // namespace quorlin
