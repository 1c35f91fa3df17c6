#include "apptools/iTunesQueryHelperAppObject.h"

#include "apptools/IcnsFile.h"
#include "apptools/iTunesQueryHelper.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkReply>

namespace quorlin::apptools {

namespace {

constexpr qint64 maximumLookupSize = 1024 * 1024;
constexpr qint64 maximumIconSize = 4 * 1024 * 1024;

} // namespace

iTunesQueryHelperAppObject::iTunesQueryHelperAppObject(QString bundleId, iTunesQueryHelper& helper)
    : QObject(&helper)
    , m_bundleId(std::move(bundleId))
    , m_helper(helper) {}

void iTunesQueryHelperAppObject::addInfoObserver() {
    if (++m_otherInfoObservationsCount == 1)
        startInfoDownload();
}

void iTunesQueryHelperAppObject::removeInfoObserver() {
    if (m_otherInfoObservationsCount == 0)
        return;
    if (--m_otherInfoObservationsCount == 0 && m_infoDownloadTask)
        m_infoDownloadTask->abort();
}

void iTunesQueryHelperAppObject::addIconObserver() {
    if (++m_iconImageObservationsCount == 1)
        startIconDownload();
}

void iTunesQueryHelperAppObject::removeIconObserver() {
    if (m_iconImageObservationsCount == 0)
        return;
    if (--m_iconImageObservationsCount == 0 && m_iconImageDownloadTask)
        m_iconImageDownloadTask->abort();
}

void iTunesQueryHelperAppObject::setIconURL(const QUrl& url) {
    if (m_iconURL == url)
        return;
    m_iconURL = url;
    if (m_iconImageObservationsCount > 0)
        startIconDownload();
}

void iTunesQueryHelperAppObject::takeLocalApp(const std::optional<QString>& appName,
                                              const std::optional<QString>& iconFile) {
    if (appName && !appName->isEmpty() && m_appName != appName) {
        m_appName = appName;
        Q_EMIT infoChanged();
    }
    if (iconFile)
        setIconURL(QUrl::fromLocalFile(*iconFile));
}

void iTunesQueryHelperAppObject::startInfoDownload() {
    if (m_infoDownloadTask || m_appName || m_infoDownloadTriesCount >= maximumInfoDownloadTries)
        return;
    ++m_infoDownloadTriesCount;
    m_infoDownloadTask =
        m_helper.get(m_helper.lookupUrl(m_bundleId), maximumLookupSize, [this](auto response) {
            m_infoDownloadTask.clear();
            if (response && response->httpStatus >= 200 && response->httpStatus <= 299)
                takeLookup(response->body);
        });
}

void iTunesQueryHelperAppObject::takeLookup(const QByteArray& body) {
    const QJsonDocument document = QJsonDocument::fromJson(body);
    const QJsonArray results = document.object().value(QLatin1String("results")).toArray();
    if (results.isEmpty())
        return;
    const QJsonObject first = results.first().toObject();
    if (const QJsonValue name = first.value(QLatin1String("trackName")); name.isString()) {
        m_appName = name.toString();
        Q_EMIT infoChanged();
    }
    if (const QUrl artwork(first.value(QLatin1String("artworkUrl60")).toString());
        artwork.isValid() && !artwork.isEmpty())
        setIconURL(artwork);
}

void iTunesQueryHelperAppObject::startIconDownload() {
    if (!m_iconURL)
        return;
    const QUrl url = *m_iconURL;
    if (url.isLocalFile()) {
        // An app's icon set holds many images; the store's icon is one.
        if (auto image = IcnsFile::iconImage(url.toLocalFile())) {
            m_iconImage = std::move(image);
            Q_EMIT iconChanged();
        }
        return;
    }
    if (m_iconImageDownloadTask && m_iconDownloadURL == url)
        return;
    if (m_iconImageDownloadTask)
        m_iconImageDownloadTask->abort();
    m_iconDownloadURL = url;
    m_iconImageDownloadTask = m_helper.get(url, maximumIconSize, [this](auto response) {
        m_iconImageDownloadTask.clear();
        if (!response || !response->httpStatus || *response->httpStatus < 200 ||
            *response->httpStatus > 299 || response->body.isEmpty())
            return;
        m_iconImage = response->body;
        Q_EMIT iconChanged();
    });
}

} // namespace quorlin::apptools
