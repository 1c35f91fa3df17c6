#include "fields/ContainerValue.h"

namespace quorlin {

namespace {

using Kind = PFMKeyPrototype::Kind;
using Representation = PFMKeyPrototype::RepresentableDictionary;

// Which of the item prototypes an item is; scalar prototypes by class alone.
std::shared_ptr<const PFMKeyPrototype> itemPrototype(const PFMKeyPrototype& array, const plist::Value& item) {
    const auto& candidates = array.subkeys();
    if (candidates.size() == 1)
        return candidates.first();
    for (const auto& candidate : candidates) {
        const bool container = candidate->kind() == Kind::array || candidate->kind() == Kind::dictionary;
        if (container ? candidate->matchesValue(item)
                      : PFMKeyPrototype::isOfPlistClass(item, candidate->kind()))
            return candidate;
    }
    return nullptr;
}

PreferenceKeyValue items(const PreferenceKey::Pointer& key, const plist::Array& array) {
    PreferenceKey::KeyList keys;
    for (const plist::Value& item : array) {
        if (const auto prototype = itemPrototype(key->prototype(), item))
            keys.append(PreferenceKey::makeFromValue(prototype, item, key));
    }
    return keys;
}

PreferenceKeyValue subkeys(const PreferenceKey::Pointer& key, const plist::Dictionary& dictionary) {
    PreferenceKey::KeyMap keys;
    for (const auto& prototype : key->prototype().subkeys()) {
        if (!prototype->name())
            continue;
        const QString& name = *prototype->name();
        keys.insert(name, dictionary.contains(name)
                              ? PreferenceKey::makeFromValue(prototype, dictionary.value(name), key)
                              : PreferenceKey::makeNew(prototype, key));
    }
    return keys;
}

} // namespace

PreferenceKeyValue ContainerValue::make(const PreferenceKey::Pointer& key, const plist::Value& container) {
    const PFMKeyPrototype& prototype = key->prototype();
    if (const plist::Array* array = container.array()) {
        if (prototype.kind() != Kind::array)
            return {};
        return prototype.subkeys().isEmpty() ? PreferenceKeyValue(container) : items(key, *array);
    }
    if (const plist::Dictionary* dictionary = container.dictionary()) {
        if (prototype.kind() != Kind::dictionary)
            return {};
        if (prototype.representedDictionary() == Representation::conventionalDictionary)
            return subkeys(key, *dictionary);
        return container;
    }
    return {};
}

} // namespace quorlin
