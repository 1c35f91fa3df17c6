#pragma once

#include "plist/Value.h"

#include <QList>
#include <QMap>
#include <QString>

#include <memory>
#include <variant>

namespace quorlin {

class PreferenceKey;

// What a preference key holds: nothing, a plain plist value (scalars, raw
// arrays, custom dictionaries), one key per array item, or one key per
// subkey of a conventional dictionary. A null plist value is nothing.
class PreferenceKeyValue {
public:
    using KeyList = QList<std::shared_ptr<PreferenceKey>>;
    using KeyMap = QMap<QString, std::shared_ptr<PreferenceKey>>;

    PreferenceKeyValue() = default;
    PreferenceKeyValue(const plist::Value& value);
    PreferenceKeyValue(KeyList items)
        : m_storage(std::move(items)) {}
    PreferenceKeyValue(KeyMap subkeys)
        : m_storage(std::move(subkeys)) {}

    bool isAbsent() const { return std::holds_alternative<std::monostate>(m_storage); }
    // Each is null unless the value has that form.
    const plist::Value* plistValue() const { return std::get_if<plist::Value>(&m_storage); }
    const KeyList* keyList() const { return std::get_if<KeyList>(&m_storage); }
    const KeyMap* keyMap() const { return std::get_if<KeyMap>(&m_storage); }

private:
    std::variant<std::monostate, plist::Value, KeyList, KeyMap> m_storage;
};

} // namespace quorlin
