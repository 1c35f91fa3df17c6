#include "supply/GitHubManifestRepository.h"

#include "supply/NetworkFetch.h"
#include "supply/RawContentEndpoint.h"
#include "supply/RepositoryStorePaths.h"
#include "supply/StoreFile.h"

#include "plist/PlistReader.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QNetworkReply>
#include <QSaveFile>
#include <QSet>

namespace quorlin {

namespace {

const QString kLocalOriginals = QStringLiteral("local-originals");
const QString kStandardizedIndex = QStringLiteral("standardized-index.plist");
const QString kLastUpdates = QStringLiteral("last-updates.plist");
const QString kManifestsIndex = QStringLiteral("Manifests/index");

bool isLater(const plist::Date& a, const plist::Date& b) {
    return a.secondsSinceReferenceDate > b.secondsSinceReferenceDate;
}

// Only GitHub's web host is mirrored; the files themselves come from the
// raw-content endpoint.
bool isGitHubHost(const QString& host) {
    const QString lower = host.toLower();
    return lower == QStringLiteral("github.com") || lower == QStringLiteral("www.github.com");
}

bool writeAtomically(const QString& path, const QByteArray& bytes) {
    if (!QDir().mkpath(QFileInfo(path).absolutePath()))
        return false;
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit();
}

} // namespace

std::unique_ptr<GitHubManifestRepository>
GitHubManifestRepository::make(const QString& root, const QString& address, const QString& branch,
                               std::optional<StandardizationSettings> settings) {
    const QUrl url(address);
    if (!isGitHubHost(url.host()))
        return nullptr;
    const auto contentRoot = RawContentEndpoint::userContentRoot(url, branch);
    if (!contentRoot)
        return nullptr;
    std::unique_ptr<GitHubManifestRepository> repository(
        new GitHubManifestRepository(root, url, branch, *contentRoot, std::move(settings)));
    if (!repository->openStore())
        return nullptr;
    repository->checkForUpdates();
    return repository;
}

GitHubManifestRepository::GitHubManifestRepository(const QString& root, const QUrl& address,
                                                   const QString& branch, const QUrl& contentRoot,
                                                   std::optional<StandardizationSettings> settings)
    : UpdatingManifestRepository(root, QDir(root).filePath(kLocalOriginals), std::move(settings))
    , m_branch(branch)
    , m_repositoryAddress(address)
    , m_userContentRootURL(contentRoot)
    , m_callbackContext(std::make_unique<QObject>()) {}

GitHubManifestRepository::~GitHubManifestRepository() {
    m_callbackContext.reset();
    cancelCheck();
}

bool GitHubManifestRepository::addressIsValid(const QString& address) {
    return RepositoryStorePaths::addressIsValid(address);
}

bool GitHubManifestRepository::branchIsValid(const QString& branch) {
    return RepositoryStorePaths::branchIsValid(branch);
}

QUrl GitHubManifestRepository::manifestsIndexURL() const {
    QUrl url = m_userContentRootURL;
    url.setPath(url.path() + kManifestsIndex);
    return url;
}

QUrl GitHubManifestRepository::commitLogURL() const {
    QUrl url = m_repositoryAddress;
    QString path = url.path();
    if (!path.endsWith(u'/'))
        path += u'/';
    url.setPath(path + QStringLiteral("commits/") + m_branch);
    return url;
}

QString GitHubManifestRepository::standardizedIndexPath() const {
    return rootDirectory() + u'/' + kStandardizedIndex;
}

QString GitHubManifestRepository::lastUpdatesPath() const {
    return rootDirectory() + u'/' + kLastUpdates;
}

void GitHubManifestRepository::checkForUpdates() {
    cancelCheck();
    status().setErrors({});
    m_isChecking = true;
    m_gitHubRepositoryStatus.setVerificationStatus(GitHubRepositoryStatus::VerificationStatuses::notVerified);
    status().setIsCheckingForUpdates(true);

    const bool addressValid = addressIsValid(m_repositoryAddress.toString());
    const bool branchValid = branchIsValid(m_branch);
    if (!addressValid || !branchValid) {
        if (!addressValid)
            addError(Errors::addressIsInvalid);
        if (!branchValid)
            addError(Errors::branchIsInvalid);
        m_gitHubRepositoryStatus.setVerificationStatus(GitHubRepositoryStatus::VerificationStatuses::failed);
        endCheck();
        return;
    }
    m_recentIndexTask =
        fetch(m_network, manifestsIndexURL(), ManifestIndex::maximumIndexSize, m_callbackContext.get(),
              [this](const FetchOutcome& outcome) { handleIndex(outcome); });
}

void GitHubManifestRepository::cancelCheck() {
    m_pendingDownloads.clear();
    const auto running = std::exchange(m_runningDownloads, {});
    for (const auto& reply : running) {
        if (reply)
            reply->abort();
    }
    if (m_recentIndexTask)
        m_recentIndexTask->abort();
    m_recentIndexTask.clear();
    if (m_isChecking && m_callbackContext)
        endCheck();
}

void GitHubManifestRepository::handleIndex(const FetchOutcome& outcome) {
    using Verification = GitHubRepositoryStatus::VerificationStatuses;
    m_recentIndexTask.clear();
    const auto failWith = [this](std::optional<Errors> error, std::optional<Verification> verification) {
        if (error)
            addError(*error);
        if (verification)
            m_gitHubRepositoryStatus.setVerificationStatus(*verification);
        endCheck();
    };
    switch (outcome.kind) {
    case FetchOutcome::Kind::cancelled:
        return failWith(std::nullopt, std::nullopt);
    case FetchOutcome::Kind::notConnected:
        return failWith(Errors::noInternetConnection, Verification::failed);
    case FetchOutcome::Kind::transportError:
        return failWith(Errors::unknown, std::nullopt);
    case FetchOutcome::Kind::notHttp:
        return failWith(Errors::failedObtainingIndexResponse, Verification::failed);
    case FetchOutcome::Kind::tooLarge:
        return failWith(Errors::parsingDownloadedIndexFailed, Verification::failed);
    case FetchOutcome::Kind::response:
        break;
    }
    if (!outcome.isSuccess())
        return failWith(Errors::failedRetrievingIndex, Verification::failed);
    const auto current = ManifestIndex::parse(outcome.body);
    if (outcome.body.isEmpty() || !current)
        return failWith(Errors::parsingDownloadedIndexFailed, Verification::failed);
    m_gitHubRepositoryStatus.setVerificationStatus(Verification::verified);

    m_downloadedIndex = outcome.body;
    const auto previous = storedIndex();
    const QList<IndexItem> toDownload = previous ? itemsToDownload(*current, *previous) : *current;
    QStringList removed;
    if (previous) {
        QSet<QString> currentPaths;
        for (const IndexItem& item : *current)
            currentPaths.insert(item.path);
        for (const IndexItem& item : *previous) {
            const auto local = resolveOriginal(item.path);
            if (!currentPaths.contains(item.path) && local)
                removed.append(*local);
        }
    }
    // Until the new index is written at the end, an interrupted check
    // leaves no index behind, and the next one downloads everything again.
    deleteFiles({standardizedIndexPath()});
    deleteFiles(removed);
    startDownloads(toDownload);
}

std::optional<QList<IndexItem>> GitHubManifestRepository::storedIndex() const {
    QFile file(standardizedIndexPath());
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    auto parsed = ManifestIndex::parse(file.readAll());
    if (!parsed)
        return std::nullopt;
    return std::move(*parsed);
}

QList<IndexItem> GitHubManifestRepository::itemsToDownload(const QList<IndexItem>& current,
                                                           const QList<IndexItem>& previous) {
    QHash<QString, IndexItem> previousByPath;
    for (const IndexItem& item : previous)
        previousByPath.insert(item.path, item);
    QSet<QString> localPaths;
    for (const QString& file : manifestFiles())
        localPaths.insert(relativePath(originalManifestsDirectory(), file));

    QList<IndexItem> result;
    for (const IndexItem& item : current) {
        const auto old = previousByPath.constFind(item.path);
        const bool needed = old == previousByPath.cend() || !item.modified || !old->modified ||
                            isLater(*item.modified, *old->modified) || !localPaths.contains(item.path);
        if (needed)
            result.append(item);
    }
    return result;
}

void GitHubManifestRepository::startDownloads(const QList<IndexItem>& items) {
    m_pendingDownloads.clear();
    for (const IndexItem& item : items) {
        const auto target = resolveOriginal(item.path);
        if (!target)
            continue;
        QUrl remote = m_userContentRootURL;
        remote.setPath(remote.path() + item.path);
        m_pendingDownloads.append(Download{remote, *target});
    }
    m_downloadsTotal = int(m_pendingDownloads.size());
    m_downloadsDone = 0;
    Q_EMIT downloadProgress(0, m_downloadsTotal);
    startNextDownloads();
}

void GitHubManifestRepository::startNextDownloads() {
    m_runningDownloads.removeAll(nullptr);
    while (m_runningDownloads.size() < maximumParallelDownloads && !m_pendingDownloads.isEmpty()) {
        const Download download = m_pendingDownloads.takeFirst();
        m_runningDownloads.append(
            fetch(m_network, download.remote, maximumManifestSize, m_callbackContext.get(),
                  [this, download](const FetchOutcome& outcome) { handleDownload(download, outcome); }));
    }
    if (m_runningDownloads.isEmpty() && m_pendingDownloads.isEmpty() && m_isChecking)
        finishDownloads();
}

void GitHubManifestRepository::handleDownload(const Download& download, const FetchOutcome& outcome) {
    if (outcome.kind == FetchOutcome::Kind::cancelled)
        return;
    if (outcome.kind == FetchOutcome::Kind::notHttp)
        addError(Errors::failedObtainingManifestResponse);
    else if (outcome.kind == FetchOutcome::Kind::tooLarge ||
             (outcome.kind == FetchOutcome::Kind::response && !outcome.isSuccess()))
        addError(Errors::failedRetrievingManifest);
    else if (outcome.isSuccess() && !writeAtomically(download.target, outcome.body))
        addError(Errors::failedMovingManifestAfterDownload);
    ++m_downloadsDone;
    Q_EMIT downloadProgress(m_downloadsDone, m_downloadsTotal);
    // The finished reply is still in the running list; it goes when its
    // deletion clears the pointer, so look again once control returns.
    QMetaObject::invokeMethod(
        m_callbackContext.get(), [this] { startNextDownloads(); }, Qt::QueuedConnection);
}

void GitHubManifestRepository::finishDownloads() {
    if (!writeAtomically(standardizedIndexPath(), m_downloadedIndex)) {
        addError(Errors::writingNewIndexFailed);
        endCheck();
        return;
    }
    reloadManifests(processOriginals());
    endCheck();
}

QStringList GitHubManifestRepository::processOriginals() {
    const QStringList written = UpdatingManifestRepository::processOriginals();
    saveResults();
    return written;
}

void GitHubManifestRepository::saveResults() {
    const auto& results = status().lastResults();
    if (results.isEmpty())
        return;
    LastUpdates updates{plist::Date::fromDateTime(QDateTime::currentDateTimeUtc()), results.values()};
    if (StoreFile::write(lastUpdatesPath(), updates.encoded()))
        m_lastUpdates = std::move(updates);
}

void GitHubManifestRepository::reloadManifests() {
    UpdatingManifestRepository::reloadManifests();
    const auto stored = StoreFile::read(lastUpdatesPath());
    m_lastUpdates = stored ? LastUpdates::decoded(*stored) : std::nullopt;
}

void GitHubManifestRepository::addError(Errors error) {
    status().appendError(error);
}

void GitHubManifestRepository::endCheck() {
    m_isChecking = false;
    m_downloadedIndex.clear();
    status().setIsCheckingForUpdates(false);
    Q_EMIT checkFinished();
}

} // namespace quorlin
