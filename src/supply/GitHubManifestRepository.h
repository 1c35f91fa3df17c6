#pragma once

#include "supply/GitHubRepositoryError.h"
#include "supply/GitHubRepositoryStatus.h"
#include "supply/LastUpdates.h"
#include "supply/ManifestIndex.h"
#include "supply/UpdatingManifestRepository.h"

#include <QByteArray>
#include <QList>
#include <QNetworkAccessManager>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QUrl>

#include <memory>
#include <optional>

class QNetworkReply;

namespace quorlin {

// A mirror of a GitHub repository laid out like ProfileManifests, read from
// static files only: the index "Manifests/index", then the manifests it
// names whose dates changed, into the store's "local-originals". The store
// then standardizes what arrived. Everything runs on the main thread; the
// network is asynchronous, so a check returns at once and reports through
// the statuses.
class GitHubManifestRepository final : public QObject, public UpdatingManifestRepository {
    Q_OBJECT

public:
    using Errors = GitHubRepositoryError;

    // How many manifests download at once, and the size allowed each.
    static constexpr int maximumParallelDownloads = 8;
    static constexpr qint64 maximumManifestSize = 8 * 1024 * 1024;

    // Opens the store (usable offline with what earlier checks left) and
    // starts a check. Nothing for an address off GitHub's web host, an
    // endpoint that forms no URL, or a store that can't be made.
    static std::unique_ptr<GitHubManifestRepository> make(const QString& root, const QString& address,
                                                          const QString& branch,
                                                          std::optional<StandardizationSettings> settings);
    ~GitHubManifestRepository() override;

    // The address has exactly an owner and a repository on GitHub's web host.
    static bool addressIsValid(const QString& address);
    // Git's rules for reference names.
    static bool branchIsValid(const QString& branch);

    void checkForUpdates() override;
    // Ends a running check quietly; what was downloaded so far stays, and
    // the next check starts over, since the index of the last applied state
    // is only written at the end.
    void cancelCheck();

    QStringList processOriginals() override;
    void reloadManifests() override;
    using UpdatingManifestRepository::reloadManifests;

    GitHubRepositoryStatus& validationStatus() { return m_gitHubRepositoryStatus; }
    const QString& branch() const { return m_branch; }
    const QUrl& repositoryAddress() const { return m_repositoryAddress; }
    const QUrl& userContentRootURL() const { return m_userContentRootURL; }
    QUrl manifestsIndexURL() const;
    QUrl commitLogURL() const;
    QString standardizedIndexPath() const;
    QString lastUpdatesPath() const;
    const std::optional<LastUpdates>& lastUpdates() const { return m_lastUpdates; }

Q_SIGNALS:
    // Manifests downloaded (or failed) so far, of how many this check needs.
    void downloadProgress(int done, int total);
    // The check has ended, whatever its outcome.
    void checkFinished();

protected:
    bool isProfileManifestsRepositoryValue() override { return true; }

private:
    struct Download {
        QUrl remote;
        QString target;
    };

    GitHubManifestRepository(const QString& root, const QUrl& address, const QString& branch,
                             const QUrl& contentRoot, std::optional<StandardizationSettings> settings);

    void handleIndex(const struct FetchOutcome& outcome);
    QList<IndexItem> itemsToDownload(const QList<IndexItem>& current, const QList<IndexItem>& previous);
    std::optional<QList<IndexItem>> storedIndex() const;
    void startDownloads(const QList<IndexItem>& items);
    void startNextDownloads();
    void handleDownload(const Download& download, const struct FetchOutcome& outcome);
    void finishDownloads();
    void saveResults();
    void addError(Errors error);
    void endCheck();

    GitHubRepositoryStatus m_gitHubRepositoryStatus;
    const QString m_branch;
    const QUrl m_repositoryAddress;
    const QUrl m_userContentRootURL;
    std::optional<LastUpdates> m_lastUpdates;

    QNetworkAccessManager m_network;
    QPointer<QNetworkReply> m_recentIndexTask;
    QList<QPointer<QNetworkReply>> m_runningDownloads;
    QList<Download> m_pendingDownloads;
    QByteArray m_downloadedIndex;
    int m_downloadsTotal = 0;
    int m_downloadsDone = 0;
    bool m_isChecking = false;
    // Destroyed first, so no network completion reaches a half-destroyed repository.
    std::unique_ptr<QObject> m_callbackContext;
};

} // namespace quorlin
