#pragma once

#include "plist/Value.h"

#include <QString>
#include <QUrl>

#include <optional>

namespace quorlin {

// Typed reads of manifest values shared by keys and domains. A value of
// another class than the one asked for counts as absent.
class ManifestFields {
public:
    // Any number (boolean, integer or real) as an integer; reals truncate.
    static std::optional<qint64> integerValue(const plist::Dictionary& dictionary, const QString& key);
    // Any number as a truth value: true unless it is zero.
    static std::optional<bool> boolValue(const plist::Dictionary& dictionary, const QString& key);
    static std::optional<plist::Array> array(const plist::Dictionary& dictionary, const QString& key);
    static std::optional<plist::Dictionary> dictionary(const plist::Dictionary& dictionary,
                                                       const QString& key);
    // A string that reads as a URL; anything else gives none.
    static std::optional<QUrl> url(const plist::Dictionary& dictionary, const QString& key);
    // True only for exactly "always": manifests spell it in lower case, and
    // "push" means nothing outside a conditional rule.
    static bool isRequiredAlways(const plist::Dictionary& dictionary);

    // The same reads of a value already found.
    static std::optional<bool> boolValue(const plist::Value& value);
    static std::optional<plist::Array> array(const plist::Value& value);
    static std::optional<plist::Dictionary> dictionary(const plist::Value& value);
    static std::optional<QUrl> url(const plist::Value& value);
    static bool isRequiredAlways(const plist::Value& require);
};

} // namespace quorlin
