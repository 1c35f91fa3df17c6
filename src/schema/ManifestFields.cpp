#include "schema/ManifestFields.h"

namespace quorlin {

std::optional<qint64> ManifestFields::integerValue(const plist::Dictionary& dictionary, const QString& key) {
    return dictionary.value(key).numberAsInteger();
}

std::optional<bool> ManifestFields::boolValue(const plist::Dictionary& dictionary, const QString& key) {
    const auto number = dictionary.value(key).numberAsReal();
    if (!number)
        return std::nullopt;
    return *number != 0;
}

std::optional<plist::Array> ManifestFields::array(const plist::Dictionary& dictionary, const QString& key) {
    const plist::Array* found = dictionary.array(key);
    return found ? std::optional<plist::Array>(*found) : std::nullopt;
}

std::optional<plist::Dictionary> ManifestFields::dictionary(const plist::Dictionary& dictionary,
                                                            const QString& key) {
    const plist::Dictionary* found = dictionary.dictionary(key);
    return found ? std::optional<plist::Dictionary>(*found) : std::nullopt;
}

std::optional<QUrl> ManifestFields::url(const plist::Dictionary& dictionary, const QString& key) {
    const auto text = dictionary.string(key);
    if (!text || text->isEmpty())
        return std::nullopt;
    const QUrl url(*text, QUrl::StrictMode);
    if (!url.isValid())
        return std::nullopt;
    return url;
}

bool ManifestFields::isRequiredAlways(const plist::Dictionary& dictionary) {
    return dictionary.string(QStringLiteral("pfm_require")) == QStringLiteral("always");
}

} // namespace quorlin
