#include "supply/ManifestIndex.h"

#include "plist/PlistReader.h"

#include <QStringList>

namespace quorlin::ManifestIndex {

namespace {

// Manifests for software developers' own preferences; nothing an
// administrator configures.
const QString skippedCategory = QStringLiteral("ManagedPreferencesDeveloper");

std::optional<IndexItem> itemFromEntry(const QString& domain, const plist::Value& entry) {
    const plist::Dictionary* dictionary = entry.dictionary();
    if (!dictionary)
        return std::nullopt;
    const auto path = dictionary->value(QStringLiteral("path")).toString();
    if (!path || !isSafePath(*path))
        return std::nullopt;
    IndexItem item{domain, dictionary->value(QStringLiteral("modified")).toDate(), *path, std::nullopt};
    item.version = dictionary->value(QStringLiteral("version")).numberAsInteger();
    return item;
}

} // namespace

Expected<QList<IndexItem>, QString> parse(const QByteArray& bytes) {
    if (bytes.size() > maximumIndexSize)
        return fail(QStringLiteral("The index is larger than %1 bytes.").arg(maximumIndexSize));
    const auto read = plist::PlistReader::read(bytes);
    if (!read)
        return fail(read.error().toString());
    const plist::Dictionary* categories = read->root.dictionary();
    if (!categories)
        return fail(QStringLiteral("The index is not a dictionary."));
    QList<IndexItem> items;
    for (auto category = categories->begin(); category != categories->end(); ++category) {
        const plist::Dictionary* domains = category.value().dictionary();
        if (category.key() == skippedCategory || !domains)
            continue;
        for (auto domain = domains->begin(); domain != domains->end(); ++domain) {
            if (auto item = itemFromEntry(domain.key(), domain.value()))
                items.append(std::move(*item));
        }
    }
    return items;
}

bool isSafePath(const QString& path) {
    if (path.isEmpty() || path.startsWith(QLatin1Char('/')) || path.startsWith(QLatin1Char('~')))
        return false;
    for (const QChar character : path) {
        // Backslashes and percent signs would be read differently by the
        // server and by the file system; control characters by nobody well.
        if (character == QLatin1Char('\\') || character == QLatin1Char('%') ||
            character.category() == QChar::Other_Control)
            return false;
    }
    const QStringList components = path.split(QLatin1Char('/'));
    for (const QString& component : components) {
        if (component.isEmpty() || component == QLatin1String(".") || component == QLatin1String(".."))
            return false;
    }
    return true;
}

} // namespace quorlin::ManifestIndex
