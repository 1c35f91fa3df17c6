#pragma once

#include "apptools/AppSearchResult.h"

#include <QByteArray>

#include <optional>

namespace quorlin::apptools {

// What the App Store's search service answered, as far as the result rules
// look at it.
struct SearchResponse {
    std::optional<int> httpStatus;
    std::optional<QByteArray> contentType;
    QByteArray body;
};

// The rows of an app search: the operating system's own apps that match,
// then the store's, then the typed text as an identifier when no row has it.
class AppSearchResults {
public:
    // The fifty apps of the operating system, in their fixed order.
    static const QList<AppSearchResult>& systemApps();
    // Nothing when the response can't be used at all: the caller keeps the
    // system rows it shows. A body that isn't the service's JSON gives no
    // store rows. An empty term gives no rows.
    static std::optional<QList<AppSearchResult>> build(const QString& term, const SearchResponse& response);
    // What a search without the store shows: the system matches and the
    // typed text as an identifier.
    static QList<AppSearchResult> withoutStore(const QString& term);
    // The store rows of a response body; nothing for a body that isn't the
    // service's JSON.
    static std::optional<QList<AppSearchResult>> storeResults(const QByteArray& body);
    // Whether a response may be used at all: a success status, the one
    // content type the service sends (when a type is given), and a body.
    static bool isUsable(const SearchResponse& response);
};

} // namespace quorlin::apptools
