#pragma once

#include <QByteArray>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QUrl>

#include <optional>

#include <QNetworkReply>

namespace quorlin::apptools {

class iTunesQueryHelper;

// What the App Store knows of one bundle identifier: its name and icon,
// fetched when someone first watches them. A lookup is tried twice at most
// in a run of the program; after that the identifier stands for itself.
class iTunesQueryHelperAppObject : public QObject {
    Q_OBJECT

public:
    static constexpr int maximumInfoDownloadTries = 2;

    iTunesQueryHelperAppObject(QString bundleId, iTunesQueryHelper& helper);

    const QString& bundleId() const { return m_bundleId; }
    const std::optional<QString>& appName() const { return m_appName; }
    // The name when known, else the identifier.
    QString appDisplayName() const { return m_appName.value_or(m_bundleId); }
    // The icon's encoded bytes, for the front end to decode.
    const std::optional<QByteArray>& iconImage() const { return m_iconImage; }
    const std::optional<QUrl>& iconURL() const { return m_iconURL; }
    int infoDownloadTriesCount() const { return m_infoDownloadTriesCount; }
    int otherInfoObservationsCount() const { return m_otherInfoObservationsCount; }
    int iconImageObservationsCount() const { return m_iconImageObservationsCount; }

    // The first watcher of the name starts the lookup, the first watcher of
    // the icon its download; when the last goes, a download is cancelled.
    void addInfoObserver();
    void removeInfoObserver();
    void addIconObserver();
    void removeIconObserver();

    // Sets the icon's address (from a lookup or a search row) and fetches
    // it when someone watches.
    void setIconURL(const QUrl& url);
    // What an app on disk says of itself: its name, and its icon file (an
    // image or an icon set), which then stands for the store's.
    void takeLocalApp(const std::optional<QString>& appName, const std::optional<QString>& iconFile);

Q_SIGNALS:
    void infoChanged();
    void iconChanged();

private:
    void startInfoDownload();
    void startIconDownload();
    void takeLookup(const QByteArray& body);

    QString m_bundleId;
    iTunesQueryHelper& m_helper;
    std::optional<QString> m_appName;
    std::optional<QByteArray> m_iconImage;
    std::optional<QUrl> m_iconURL;
    QPointer<QNetworkReply> m_infoDownloadTask;
    QPointer<QNetworkReply> m_iconImageDownloadTask;
    QUrl m_iconDownloadURL;
    int m_infoDownloadTriesCount = 0;
    int m_otherInfoObservationsCount = 0;
    int m_iconImageObservationsCount = 0;
};

} // namespace quorlin::apptools
