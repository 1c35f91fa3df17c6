#pragma once

#include "plist/Expected.h"
#include "plist/Value.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>

namespace quorlin {

// One manifest an online repository offers: where it lies below the raw
// root, and the date that tells whether the copy in the store is current.
struct IndexItem {
    QString indexDomain;
    std::optional<plist::Date> modified;
    QString path;
    std::optional<qint64> version;

    friend bool operator==(const IndexItem&, const IndexItem&) = default;
};

// The "Manifests/index" file of a repository laid out like ProfileManifests:
// categories, then domains, then entries with a path and a date.
namespace ManifestIndex {

// The largest index accepted; the real one is a few hundred kilobytes.
constexpr qint64 maximumIndexSize = 16 * 1024 * 1024;

// Fails only for bytes that aren't a property list with a dictionary root;
// entries that can't be used are skipped one by one.
Expected<QList<IndexItem>, QString> parse(const QByteArray& bytes);

// Whether a path from an index may name a file in the store at all. The
// index comes from the network, so anything that could leave the store or
// mean something else once decoded is refused before it is ever resolved.
bool isSafePath(const QString& path);

} // namespace ManifestIndex

} // namespace quorlin
