#include "supply/ModificationIndexItem.h"

#include "supply/UpdatingManifestRepository.h"

namespace quorlin {

namespace {

const QString kOriginalPath = QStringLiteral("OriginalPath");
const QString kStandardizedPath = QStringLiteral("StandardizedPath");
const QString kModificationTime = QStringLiteral("ModificationTime");

ModificationIndexItem::ModificationIndexItemErrors decodingError(const QString& message) {
    return {message};
}

} // namespace

plist::Dictionary ModificationIndexItem::encoded(const UpdatingManifestRepository& repository) const {
    return {
        {kOriginalPath,
         UpdatingManifestRepository::relativePath(repository.originalManifestsDirectory(), originalLocation)},
        {kStandardizedPath, UpdatingManifestRepository::relativePath(
                                repository.standardizedManifestsDirectory(), standardizedLocation)},
        {kModificationTime, modificationTime},
    };
}

Expected<ModificationIndexItem, ModificationIndexItem::ModificationIndexItemErrors>
ModificationIndexItem::decoded(const plist::Value& value, const UpdatingManifestRepository* repository) {
    if (!repository)
        return fail(decodingError(
            QStringLiteral("No updating manifest repository available for decoding ModificationIndexItem")));
    const plist::Dictionary* dictionary = value.dictionary();
    const auto originalPath = dictionary ? dictionary->string(kOriginalPath) : std::nullopt;
    const auto standardizedPath = dictionary ? dictionary->string(kStandardizedPath) : std::nullopt;
    const auto modificationTime = dictionary ? dictionary->date(kModificationTime) : std::nullopt;
    if (!originalPath || !standardizedPath || !modificationTime)
        return fail(decodingError(QStringLiteral("Could not decode ModificationIndexItem")));

    const auto original = repository->resolveOriginal(*originalPath);
    if (!original)
        return fail(decodingError(
            QStringLiteral(
                "Could not form a valid original location URL for decoding ModificationIndexItem ") +
            *originalPath));
    const auto standardized = repository->resolveStandardized(*standardizedPath);
    if (!standardized)
        return fail(decodingError(QStringLiteral("Could not form a valid standardized location URL for "
                                                 "decoding ModificationIndexItem ") +
                                  *standardizedPath));
    return ModificationIndexItem{*original, *standardized, *modificationTime};
}

plist::Array ModificationIndexItem::encodedIndex(const QList<ModificationIndexItem>& index,
                                                 const UpdatingManifestRepository& repository) {
    plist::Array array;
    for (const ModificationIndexItem& item : index)
        array.append(item.encoded(repository));
    return array;
}

QList<ModificationIndexItem>
ModificationIndexItem::decodedIndex(const plist::Value& value, const UpdatingManifestRepository& repository) {
    const plist::Array* array = value.array();
    if (!array)
        return {};
    QList<ModificationIndexItem> index;
    for (const plist::Value& element : *array) {
        auto item = decoded(element, &repository);
        if (!item)
            return {};
        index.append(std::move(*item));
    }
    return index;
}

} // namespace quorlin
