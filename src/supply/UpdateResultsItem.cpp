#include "supply/UpdateResultsItem.h"

namespace quorlin {

namespace {

const QString kStatus = QStringLiteral("Status");
const QString kDomain = QStringLiteral("Domain");
const QString kFileModificationTime = QStringLiteral("FileModificationTime");
const QString kManifestModificationTime = QStringLiteral("ManifestModificationTime");

} // namespace

QString UpdateResultsItem::rawValue(UpdateStatuses status) {
    return status == UpdateStatuses::removed ? QStringLiteral("removed") : QStringLiteral("updated");
}

plist::Dictionary UpdateResultsItem::encoded() const {
    plist::Dictionary dictionary{{kStatus, rawValue(status)}, {kDomain, domain}};
    if (fileModificationDate)
        dictionary.insert(kFileModificationTime, *fileModificationDate);
    if (manifestModificationDate)
        dictionary.insert(kManifestModificationTime, *manifestModificationDate);
    return dictionary;
}

Expected<UpdateResultsItem, UpdateResultsItem::DecodingError>
UpdateResultsItem::decoded(const plist::Value& value) {
    const plist::Dictionary* dictionary = value.dictionary();
    const auto domain = dictionary ? dictionary->string(kDomain) : std::nullopt;
    if (!domain)
        return fail(DecodingError{QStringLiteral("Could not decode a valid domain value")});
    const auto status = dictionary->string(kStatus);
    UpdateResultsItem item;
    if (status == rawValue(UpdateStatuses::updated))
        item.status = UpdateStatuses::updated;
    else if (status == rawValue(UpdateStatuses::removed))
        item.status = UpdateStatuses::removed;
    else
        return fail(DecodingError{QStringLiteral("Could not decode a valid status value")});
    item.domain = *domain;
    item.fileModificationDate = dictionary->date(kFileModificationTime);
    item.manifestModificationDate = dictionary->date(kManifestModificationTime);
    return item;
}

} // namespace quorlin
