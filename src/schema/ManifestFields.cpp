#include "schema/ManifestFields.h"

namespace quorlin {

std::optional<qint64> ManifestFields::integerValue(const plist::Dictionary& dictionary, const QString& key) {
    return dictionary.value(key).numberAsInteger();
}

std::optional<bool> ManifestFields::boolValue(const plist::Dictionary& dictionary, const QString& key) {
    return boolValue(dictionary.value(key));
}

std::optional<plist::Array> ManifestFields::array(const plist::Dictionary& dictionary, const QString& key) {
    return array(dictionary.value(key));
}

std::optional<plist::Dictionary> ManifestFields::dictionary(const plist::Dictionary& dictionary,
                                                            const QString& key) {
    return ManifestFields::dictionary(dictionary.value(key));
}

std::optional<QUrl> ManifestFields::url(const plist::Dictionary& dictionary, const QString& key) {
    return url(dictionary.value(key));
}

bool ManifestFields::isRequiredAlways(const plist::Dictionary& dictionary) {
    return isRequiredAlways(dictionary.value(QStringLiteral("pfm_require")));
}

std::optional<bool> ManifestFields::boolValue(const plist::Value& value) {
    const auto number = value.numberAsReal();
    if (!number)
        return std::nullopt;
    return *number != 0;
}

std::optional<plist::Array> ManifestFields::array(const plist::Value& value) {
    const plist::Array* found = value.array();
    return found ? std::optional<plist::Array>(*found) : std::nullopt;
}

std::optional<plist::Dictionary> ManifestFields::dictionary(const plist::Value& value) {
    const plist::Dictionary* found = value.dictionary();
    return found ? std::optional<plist::Dictionary>(*found) : std::nullopt;
}

std::optional<QUrl> ManifestFields::url(const plist::Value& value) {
    const auto text = value.toString();
    if (!text || text->isEmpty())
        return std::nullopt;
    const QUrl url(*text, QUrl::StrictMode);
    if (!url.isValid())
        return std::nullopt;
    return url;
}

bool ManifestFields::isRequiredAlways(const plist::Value& require) {
    return require.toString() == QStringLiteral("always");
}

} // namespace quorlin
