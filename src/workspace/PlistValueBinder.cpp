#include "workspace/PlistValueBinder.h"

#include <QStringList>

#include <algorithm>

namespace quorlin {

namespace {

using Kind = PFMKeyPrototype::Kind;

bool isScalarKind(Kind kind) {
    return kind != Kind::array && kind != Kind::dictionary;
}

bool isConventionalDictionary(const PFMKeyPrototype& prototype) {
    return prototype.kind() == Kind::dictionary &&
           prototype.representedDictionary() != PFMKeyPrototype::RepresentableDictionary::customDictionary;
}

bool itemFits(const PFMKeyPrototype& prototype, const plist::Value& item) {
    if (isScalarKind(prototype.kind()))
        return PFMKeyPrototype::isOfPlistClass(item, prototype.kind());
    return prototype.matchesValue(item);
}

} // namespace

void PlistValueBinder::bind(const PreferenceKey::Pointer& key, const plist::Value& value) {
    if (value.isNull()) {
        key->setValue({});
        return;
    }
    const PFMKeyPrototype& prototype = key->prototype();
    const Kind kind = prototype.kind();
    const plist::Dictionary* dictionary = value.dictionary();
    HeldValues held;
    PreferenceKeyValue bound;
    if (dictionary && isConventionalDictionary(prototype)) {
        bindSubkeys(key, *dictionary, held);
        bound = key->value();
    } else if ((dictionary && kind == Kind::dictionary) ||
               (isScalarKind(kind) && PFMKeyPrototype::isOfPlistClass(value, kind))) {
        bound = PreferenceKeyValue(value);
    } else if (const plist::Array* array = value.array(); array && kind == Kind::array) {
        bound = prototype.subkeys().isEmpty() ? PreferenceKeyValue(value) : bindItems(key, *array, held);
    } else {
        held.own = HeldValues::Own{HeldValues::Reason::wrongClass, value};
    }
    // A key a rule leaves out keeps what it is given, as it keeps a file's.
    if (key->excluded() && !held.own)
        held.own = HeldValues::Own{HeldValues::Reason::excluded, value};
    key->setValue(bound);
    key->replaceHeldValues(std::move(held));
}

void PlistValueBinder::bindSubkeys(const PreferenceKey::Pointer& key, const plist::Dictionary& source,
                                   HeldValues& held) {
    auto subkeys = key->children().value_or(PreferenceKey::KeyList());
    // A key that held a value of the wrong class has no subkeys yet.
    if (subkeys.isEmpty()) {
        PreferenceKey::KeyMap made;
        for (const auto& prototype : key->prototype().subkeys()) {
            if (prototype->name())
                made.insert(*prototype->name(), PreferenceKey::makeNew(prototype, key));
        }
        key->setValue(PreferenceKeyValue(made));
        subkeys = made.values();
    }
    QStringList described;
    for (const auto& subkey : subkeys) {
        bind(subkey, source.value(subkey->name()));
        described.append(subkey->name());
    }
    for (auto entry = source.begin(); entry != source.end(); ++entry) {
        if (!described.contains(entry.key()))
            held.subkeys.insert(entry.key(), entry.value());
    }
}

PreferenceKeyValue PlistValueBinder::bindItems(const PreferenceKey::Pointer& key, const plist::Array& source,
                                               HeldValues& held) {
    const PFMKeyPrototypeList& prototypes = key->prototype().subkeys();
    PreferenceKey::KeyList items;
    for (qsizetype index = 0; index < source.size(); ++index) {
        const plist::Value& item = source.at(index);
        const auto fitting =
            prototypes.size() == 1
                ? prototypes.begin()
                : std::find_if(prototypes.begin(), prototypes.end(),
                               [&](const auto& prototype) { return itemFits(*prototype, item); });
        if (fitting != prototypes.end())
            items.append(PreferenceKey::makeFromValue(*fitting, item, key));
        else
            held.items.append({index, item});
    }
    return PreferenceKeyValue(std::move(items));
}

qsizetype PlistValueBinder::misfitCount(const PreferenceKey& key) {
    qsizetype count = 0;
    for (const auto& entry : key.heldEntries())
        count +=
            entry.reason == HeldValues::Reason::wrongClass || entry.reason == HeldValues::Reason::misfitItem;
    if (const auto children = key.children()) {
        for (const auto& child : *children)
            count += misfitCount(*child);
    }
    return count;
}

} // namespace quorlin
