#pragma once

#include "apptools/AppSearchResult.h"
#include "apptools/AppSearchResults.h"

#include <QHash>
#include <QNetworkAccessManager>
#include <QObject>
#include <QUrl>

#include <functional>
#include <optional>

class QNetworkReply;

namespace quorlin::apptools {

class iTunesQueryHelperAppObject;

// Asks the App Store's public search service for apps by name and by bundle
// identifier, and keeps one object per identifier for the whole program, so
// that every field showing an identifier shares its name and icon and one
// lookup serves them all. The service's address is the public one, or
// QUORLIN_ITUNES_SEARCH_URL, which lets tests and mirrors stand in for it.
class iTunesQueryHelper : public QObject {
    Q_OBJECT

public:
    using ResponseHandler = std::function<void(std::optional<SearchResponse>)>;
    using SearchHandler = std::function<void(std::optional<QList<AppSearchResult>>)>;

    explicit iTunesQueryHelper(QObject* parent = nullptr);
    ~iTunesQueryHelper() override;

    // The program's one helper, made on first use on the main thread.
    static iTunesQueryHelper& shared();
    static QUrl defaultBaseUrl();

    QUrl baseUrl() const { return m_baseUrl; }
    void setBaseUrl(const QUrl& url) { m_baseUrl = url; }
    // A stalled service must not keep a search running for ever.
    void setTransferTimeout(int milliseconds) { m_transferTimeout = milliseconds; }

    QUrl searchUrl(const QString& term) const;
    QUrl lookupUrl(const QString& bundleId) const;

    // The cached object, made when absent.
    iTunesQueryHelperAppObject* appObject(const QString& bundleId);
    int cachedObjectCount() const { return int(m_queryCache.size()); }

    // Searches the store; the handler gets the rows of the result rules, or
    // nothing when the answer can't be used (and after a cancel, nothing is
    // called). Abort the reply to cancel.
    QNetworkReply* search(const QString& term, SearchHandler handler);
    // One GET with the status, content type and body kept; nothing when the
    // request failed on the way or passed the size allowed.
    QNetworkReply* get(const QUrl& url, qint64 maximumSize, ResponseHandler handler);

private:
    QUrl endpoint(const QString& path, const QString& query) const;

    QNetworkAccessManager m_network;
    QUrl m_baseUrl;
    int m_transferTimeout = 30'000;
    QHash<QString, iTunesQueryHelperAppObject*> m_queryCache;
};

} // namespace quorlin::apptools
