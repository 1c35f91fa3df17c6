#include "apptools/iTunesQueryHelper.h"

#include "apptools/iTunesQueryHelperAppObject.h"

#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>

#include <memory>

namespace quorlin::apptools {

namespace {

// A search of a thousand apps is well below this; a hostile answer is cut off.
constexpr qint64 maximumSearchSize = 32 * 1024 * 1024;
const QString kEntities = QStringLiteral("entity=software,iPadSoftware,macSoftware");
// The program's one localisation, and so the first of its preferred ones.
const QString kLanguagePart = QStringLiteral("lang=en");

} // namespace

iTunesQueryHelper::iTunesQueryHelper(QObject* parent)
    : QObject(parent)
    , m_baseUrl(defaultBaseUrl()) {}

iTunesQueryHelper::~iTunesQueryHelper() = default;

iTunesQueryHelper& iTunesQueryHelper::shared() {
    static iTunesQueryHelper* helper = new iTunesQueryHelper;
    return *helper;
}

QUrl iTunesQueryHelper::defaultBaseUrl() {
    const QByteArray override = qgetenv("QUORLIN_ITUNES_SEARCH_URL");
    QUrl url = override.isEmpty() ? QUrl(QStringLiteral("https://itunes.apple.com/"))
                                  : QUrl(QString::fromUtf8(override));
    if (!url.path().endsWith(QLatin1Char('/')))
        url.setPath(url.path() + QLatin1Char('/'));
    return url;
}

QUrl iTunesQueryHelper::endpoint(const QString& path, const QString& query) const {
    QUrl url = m_baseUrl;
    url.setPath(m_baseUrl.path() + path);
    // Set as one string, so the usual percent-encoding of a query applies.
    url.setQuery(query);
    return url;
}

QUrl iTunesQueryHelper::searchUrl(const QString& term) const {
    return endpoint(QStringLiteral("search"), QStringList{QStringLiteral("term=") + term, kEntities,
                                                          QStringLiteral("limit=1000"), kLanguagePart}
                                                  .join(QLatin1Char('&')));
}

QUrl iTunesQueryHelper::lookupUrl(const QString& bundleId) const {
    return endpoint(QStringLiteral("lookup"), QStringList{QStringLiteral("bundleId=") + bundleId, kEntities,
                                                          QStringLiteral("limit=1"), kLanguagePart}
                                                  .join(QLatin1Char('&')));
}

iTunesQueryHelperAppObject* iTunesQueryHelper::appObject(const QString& bundleId) {
    iTunesQueryHelperAppObject*& object = m_queryCache[bundleId];
    if (!object)
        object = new iTunesQueryHelperAppObject(bundleId, *this);
    return object;
}

QNetworkReply* iTunesQueryHelper::search(const QString& term, SearchHandler handler) {
    return get(searchUrl(term), maximumSearchSize, [term, handler = std::move(handler)](auto response) {
        handler(response ? AppSearchResults::build(term, *response) : std::nullopt);
    });
}

QNetworkReply* iTunesQueryHelper::get(const QUrl& url, qint64 maximumSize, ResponseHandler handler) {
    QNetworkReply* reply = m_network.get(QNetworkRequest(url));
    auto body = std::make_shared<QByteArray>();
    // Set when this side gave up, so that only a caller's own abort goes unanswered.
    auto gaveUp = std::make_shared<bool>(false);
    auto* timer = new QTimer(reply);
    timer->setSingleShot(true);
    connect(timer, &QTimer::timeout, reply, [reply, gaveUp] {
        *gaveUp = true;
        reply->abort();
    });
    timer->start(m_transferTimeout);
    connect(reply, &QNetworkReply::readyRead, this, [reply, body, gaveUp, maximumSize, timer] {
        if (*gaveUp)
            return;
        timer->start();
        body->append(reply->readAll());
        if (body->size() > maximumSize) {
            *gaveUp = true;
            reply->abort();
        }
    });
    connect(reply, &QNetworkReply::finished, this, [reply, body, gaveUp, handler = std::move(handler)] {
        reply->deleteLater();
        if (*gaveUp) {
            handler(std::nullopt);
            return;
        }
        if (reply->error() == QNetworkReply::OperationCanceledError)
            return;
        body->append(reply->readAll());
        const QVariant status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
        // An HTTP error status is an answer; a failure on the way is none.
        if (!status.isValid() || (reply->error() != QNetworkReply::NoError &&
                                  reply->error() < QNetworkReply::ContentAccessDenied)) {
            handler(std::nullopt);
            return;
        }
        SearchResponse response;
        response.httpStatus = status.toInt();
        if (reply->hasRawHeader("Content-Type"))
            response.contentType = reply->rawHeader("Content-Type");
        response.body = std::move(*body);
        handler(std::move(response));
    });
    return reply;
}

} // namespace quorlin::apptools
