#include "supply/StandardizationSettings.h"

namespace quorlin {

namespace {

const QString kHidePayloadTopLevelKeys = QStringLiteral("HidePayloadTopLevelKeys");
const QString kSortOrder = QStringLiteral("SortOrder");
const QString kScrubThirdPartyPlaceholders = QStringLiteral("ScrubThirdPartyPlaceholders");
const QString kIconSearchDirectories = QStringLiteral("IconSearchDirectories");
const QString kSupportSearchDirectory = QStringLiteral("SupportSearchDirectory");
const QString kSupportVersion = QStringLiteral("SupportVersion");

plist::Array stringArray(const QStringList& strings) {
    plist::Array array;
    for (const QString& string : strings)
        array.append(string);
    return array;
}

// Absent is fine; anything but an array of strings is not.
bool readStrings(const plist::Value& value, std::optional<QStringList>& strings) {
    if (value.isNull())
        return true;
    const plist::Array* array = value.array();
    if (!array)
        return false;
    QStringList read;
    for (const plist::Value& element : *array) {
        const auto string = element.toString();
        if (!string)
            return false;
        read.append(*string);
    }
    strings = read;
    return true;
}

bool readString(const plist::Value& value, std::optional<QString>& string) {
    if (value.isNull())
        return true;
    string = value.toString();
    return string.has_value();
}

} // namespace

plist::Dictionary StandardizationSettings::encoded() const {
    plist::Dictionary dictionary{
        {kHidePayloadTopLevelKeys, hidePayloadTopLevelKeys},
        {kSortOrder, stringArray(sortOrder)},
        {kScrubThirdPartyPlaceholders, scrubThirdPartyPlaceholders},
        {kSupportVersion, supportVersion},
    };
    if (iconSearchDirectories)
        dictionary.insert(kIconSearchDirectories, stringArray(*iconSearchDirectories));
    if (supportSearchDirectory)
        dictionary.insert(kSupportSearchDirectory, *supportSearchDirectory);
    return dictionary;
}

std::optional<StandardizationSettings> StandardizationSettings::decoded(const plist::Value& value) {
    const plist::Dictionary* dictionary = value.dictionary();
    if (!dictionary)
        return std::nullopt;
    const auto hide = dictionary->boolean(kHidePayloadTopLevelKeys);
    const auto scrub = dictionary->boolean(kScrubThirdPartyPlaceholders);
    if (!hide || !scrub)
        return std::nullopt;

    StandardizationSettings settings;
    settings.hidePayloadTopLevelKeys = *hide;
    settings.scrubThirdPartyPlaceholders = *scrub;
    std::optional<QStringList> sortOrder;
    std::optional<QString> supportVersion;
    const bool read =
        readStrings(dictionary->value(kSortOrder), sortOrder) &&
        readStrings(dictionary->value(kIconSearchDirectories), settings.iconSearchDirectories) &&
        readString(dictionary->value(kSupportSearchDirectory), settings.supportSearchDirectory) &&
        readString(dictionary->value(kSupportVersion), supportVersion);
    if (!read)
        return std::nullopt;
    settings.sortOrder = sortOrder.value_or(QStringList());
    settings.supportVersion = supportVersion.value_or(QString());
    return settings;
}

} // namespace quorlin
