#include "supply/DomainMerger.h"

#include <algorithm>

namespace quorlin {

namespace {

const QString platformsKey = QStringLiteral("pfm_platforms");
const QString excludedPlatformsKey = QStringLiteral("pfm_n_platforms");
const QString subkeysKey = QStringLiteral("pfm_subkeys");
const QString nameKey = QStringLiteral("pfm_name");

DomainMerger::PlatformSet stringSet(const plist::Array* array) {
    DomainMerger::PlatformSet set;
    if (!array)
        return set;
    for (const plist::Value& element : *array)
        if (const auto string = element.toString())
            set.insert(*string);
    return set;
}

plist::Dictionary* mutableSubkeyDictionary(plist::Array& keys, qsizetype index) {
    return index < keys.size() ? keys[index].mutableDictionary() : nullptr;
}

plist::Dictionary* partnerNamed(plist::Array& keys, const QString& name) {
    for (plist::Value& key : keys) {
        const plist::Dictionary* dictionary = key.dictionary();
        if (dictionary && dictionary->string(nameKey) == name)
            return key.mutableDictionary();
    }
    return nullptr;
}

plist::Array* mutableSubkeys(plist::Dictionary& key) {
    plist::Value* subkeys = key.find(subkeysKey);
    return subkeys ? subkeys->mutableArray() : nullptr;
}

} // namespace

plist::Dictionary DomainMerger::merge(const QList<plist::Dictionary>& manifests) {
    plist::Dictionary result;
    plist::Array subkeys;
    PlatformSet allPlatforms;
    for (const plist::Dictionary& manifest : manifests) {
        const PlatformSet platforms = stringSet(manifest.array(platformsKey));
        allPlatforms.unite(platforms);
        for (auto entry = manifest.begin(); entry != manifest.end(); ++entry) {
            if (entry.key() == subkeysKey && entry.value().isArray())
                mergeSubkeys(subkeys, *entry.value().array(), platforms, false);
            else if (entry.key() != platformsKey)
                result.insert(entry.key(), entry.value());
        }
    }
    prunePlatforms(subkeys, allPlatforms);
    result.insert(platformsKey, sortedPlatformArray(allPlatforms));
    result.insert(subkeysKey, subkeys);
    return result;
}

void DomainMerger::mergeSubkeys(plist::Array& existing, const plist::Array& incoming,
                                const PlatformSet& platforms, bool parentIsArray, int depth) {
    if (depth >= maximumDepth)
        return;
    for (qsizetype index = 0; index < incoming.size(); ++index) {
        const plist::Dictionary* key = incoming[index].dictionary();
        if (!key)
            continue;
        plist::Dictionary* partner = nullptr;
        if (const auto name = key->string(nameKey)) {
            partner = partnerNamed(existing, *name);
        } else {
            // Unnamed keys only exist inside array keys, where position is
            // all that identifies them, and only while both sides agree on it.
            if (!parentIsArray || existing.size() != incoming.size())
                continue;
            partner = mutableSubkeyDictionary(existing, index);
            if (!partner)
                continue;
        }
        if (partner) {
            mergeKey(*partner, *key, platforms, depth + 1);
            continue;
        }
        plist::Dictionary added = *key;
        if (!added.contains(platformsKey))
            added.insert(platformsKey, sortedPlatformArray(platforms));
        if (plist::Array* children = mutableSubkeys(added))
            applyPlatforms(*children, platforms, depth + 1);
        existing.append(added);
    }
}

void DomainMerger::mergeKey(plist::Dictionary& merged, const plist::Dictionary& incoming,
                            const PlatformSet& platforms, int depth) {
    if (depth >= maximumDepth)
        return;
    const bool isArray = incoming.string(QStringLiteral("pfm_type")) == QStringLiteral("array");
    plist::Dictionary placed = incoming;
    const PlatformSet own = applyPlatforms(placed, platforms);
    for (auto entry = incoming.begin(); entry != incoming.end(); ++entry) {
        const QString& name = entry.key();
        if (name == platformsKey || name == excludedPlatformsKey)
            continue;
        if (name != subkeysKey || !entry.value().isArray()) {
            merged.insert(name, entry.value());
            continue;
        }
        const plist::Array* declared = incoming.array(platformsKey);
        const PlatformSet inner = declared ? stringSet(declared) : own;
        plist::Array* mergedSubkeys = mutableSubkeys(merged);
        if (mergedSubkeys && !mergedSubkeys->isEmpty()) {
            mergeSubkeys(*mergedSubkeys, *entry.value().array(), inner, isArray, depth + 1);
        } else {
            plist::Array copy = *entry.value().array();
            applyPlatforms(copy, own, depth + 1);
            merged.insert(subkeysKey, copy);
        }
    }
    merged.insert(platformsKey, sortedPlatformArray(stringSet(merged.array(platformsKey)).unite(own)));
}

DomainMerger::PlatformSet DomainMerger::applyPlatforms(plist::Dictionary& key, const PlatformSet& platforms) {
    PlatformSet own = platforms;
    if (const plist::Array* excluded = key.array(excludedPlatformsKey)) {
        own.subtract(stringSet(excluded));
        key.remove(excludedPlatformsKey);
    }
    if (const plist::Array* declared = key.array(platformsKey))
        own = stringSet(declared).intersect(platforms);
    key.insert(platformsKey, sortedPlatformArray(own));
    return own;
}

void DomainMerger::applyPlatforms(plist::Array& keys, const PlatformSet& platforms, int depth) {
    if (depth >= maximumDepth)
        return;
    for (plist::Value& element : keys) {
        plist::Dictionary* key = element.mutableDictionary();
        if (!key)
            continue;
        const PlatformSet own = applyPlatforms(*key, platforms);
        if (plist::Array* children = mutableSubkeys(*key))
            applyPlatforms(*children, own, depth + 1);
    }
}

void DomainMerger::prunePlatforms(plist::Array& keys, const PlatformSet& parentPlatforms, int depth) {
    if (depth >= maximumDepth)
        return;
    for (plist::Value& element : keys) {
        plist::Dictionary* key = element.mutableDictionary();
        if (!key)
            continue;
        PlatformSet childPlatforms = parentPlatforms;
        if (const plist::Array* declared = key->array(platformsKey)) {
            childPlatforms = stringSet(declared);
            if (childPlatforms == parentPlatforms)
                key->remove(platformsKey);
        }
        if (plist::Array* children = mutableSubkeys(*key))
            prunePlatforms(*children, childPlatforms, depth + 1);
    }
}

plist::Array DomainMerger::sortedPlatformArray(const PlatformSet& platforms) {
    QStringList sorted(platforms.begin(), platforms.end());
    std::sort(sorted.begin(), sorted.end());
    plist::Array array;
    for (const QString& platform : sorted)
        array.append(platform);
    return array;
}

} // namespace quorlin
