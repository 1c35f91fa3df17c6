#pragma once

// The supply tests' one header: the files, images and manifest trees they
// make (SupplyFixtures.h, shared with the window tests) and the golden cases.

#include "SupplyFixtures.h"

#include "plist/Utilities.h"
#include "plist/Value.h"
#include "schema/SchemaTrees.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QStringList>

#include <initializer_list>

namespace quorlin::test {

// tests/data/standardization/<relative>
inline QString standardizationDataPath(const QString& relative = {}) {
    return testDataPath(QStringLiteral("standardization/") + relative);
}

// A fixture plist that must be a dictionary; an empty one if it isn't. Golden
// cases check that what they read isn't empty.
inline plist::Dictionary readDictionary(const QString& path) {
    auto parsed = Utilities::getDictionaryFromPlistBytes(readFile(path));
    return parsed ? *parsed : plist::Dictionary{};
}

// The case folders of one kind of golden case, e.g. "merge".
inline QStringList caseFolders(const QString& kind) {
    QDir folder(standardizationDataPath(kind));
    QStringList folders;
    for (const QString& name : folder.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name))
        folders << folder.filePath(name);
    return folders;
}

inline plist::Array stringArray(std::initializer_list<const char*> strings) {
    plist::Array array;
    for (const char* string : strings)
        array.append(string);
    return array;
}

// A manifest key: name (none when null), type and whatever else it holds.
inline plist::Dictionary manifestKey(const char* name, const char* type,
                                     const plist::Dictionary& extra = {}) {
    plist::Dictionary key = extra;
    if (name)
        key.insert(QStringLiteral("pfm_name"), name);
    if (type)
        key.insert(QStringLiteral("pfm_type"), type);
    return key;
}

inline plist::Array keyArray(std::initializer_list<plist::Dictionary> keys) {
    plist::Array array;
    for (const plist::Dictionary& key : keys)
        array.append(key);
    return array;
}

// The subkey named `name` among a dictionary's "pfm_subkeys", or an empty one.
inline plist::Dictionary subkeyNamed(const plist::Dictionary& parent, const QString& name) {
    if (const plist::Array* subkeys = parent.array(QStringLiteral("pfm_subkeys")))
        for (const plist::Value& subkey : *subkeys)
            if (const plist::Dictionary* key = subkey.dictionary();
                key && key->string(QStringLiteral("pfm_name")) == name)
                return *key;
    return {};
}

// A key nested `depth` levels below a root list, each level one dictionary key.
// A few hundred levels are far past every depth limit, yet shallow enough for
// the value tree's own recursive destruction.
inline plist::Array deeplyNestedKeys(int depth, const plist::Dictionary& extra = {}) {
    plist::Dictionary key = manifestKey("Leaf", "string", extra);
    for (int level = 0; level < depth; ++level) {
        plist::Dictionary parent = manifestKey("Level", "dictionary", extra);
        parent.insert(QStringLiteral("pfm_subkeys"), plist::Array{key});
        key = parent;
    }
    return plist::Array{key};
}

} // namespace quorlin::test
