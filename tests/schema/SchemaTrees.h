#pragma once

#include "plist/Value.h"

#include <QString>

namespace quorlin::test {

// A manifest key of the given name and "pfm_type", with any further entries.
inline plist::Dictionary keyTree(const QString& name, const QString& type, plist::Dictionary extra = {}) {
    extra.insert(QStringLiteral("pfm_name"), name);
    extra.insert(QStringLiteral("pfm_type"), type);
    return extra;
}

// A key without "pfm_name", as array items are written.
inline plist::Dictionary itemTree(const QString& type, plist::Dictionary extra = {}) {
    extra.insert(QStringLiteral("pfm_type"), type);
    return extra;
}

inline plist::Dictionary withSubkeys(plist::Dictionary key, const plist::Array& subkeys) {
    key.insert(QStringLiteral("pfm_subkeys"), subkeys);
    return key;
}

// The smallest manifest that makes a domain; further entries are added or replace its own.
inline plist::Dictionary manifestTree(const QString& domain, const plist::Array& subkeys,
                                      const plist::Dictionary& extra = {}) {
    plist::Dictionary manifest{{QStringLiteral("pfm_title"), QStringLiteral("Test Payload")},
                               {QStringLiteral("pfm_description"), QStringLiteral("Settings for tests")},
                               {QStringLiteral("pfm_domain"), domain},
                               {QStringLiteral("pfm_format_version"), 1},
                               {QStringLiteral("pfm_subkeys"), subkeys}};
    for (auto entry = extra.begin(); entry != extra.end(); ++entry)
        manifest.insert(entry.key(), entry.value());
    return manifest;
}

} // namespace quorlin::test
