#include "supply/LastUpdates.h"

namespace quorlin {

namespace {
const QString kUpdateTime = QStringLiteral("UpdateTime");
const QString kUpdateItems = QStringLiteral("UpdateItems");
} // namespace

plist::Dictionary LastUpdates::encoded() const {
    plist::Array items;
    for (const UpdateResultsItem& item : updateResultsItems)
        items.append(item.encoded());
    return plist::Dictionary{{kUpdateTime, updateTime}, {kUpdateItems, items}};
}

std::optional<LastUpdates> LastUpdates::decoded(const plist::Value& value) {
    const plist::Dictionary* dictionary = value.dictionary();
    if (!dictionary)
        return std::nullopt;
    const auto updateTime = dictionary->date(kUpdateTime);
    const plist::Array* items = dictionary->array(kUpdateItems);
    if (!updateTime || !items)
        return std::nullopt;
    LastUpdates result{*updateTime, {}};
    for (const plist::Value& item : *items) {
        auto decodedItem = UpdateResultsItem::decoded(item);
        if (!decodedItem)
            return std::nullopt;
        result.updateResultsItems.append(std::move(*decodedItem));
    }
    return result;
}

} // namespace quorlin
