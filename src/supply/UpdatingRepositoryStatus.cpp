#include "supply/UpdatingRepositoryStatus.h"

#include <QCoreApplication>
#include <QThread>

namespace quorlin {

UpdatingRepositoryStatus::UpdatingRepositoryStatus(QObject* parent)
    : QObject(parent) {}

void UpdatingRepositoryStatus::setIsCheckingForUpdates(bool isCheckingForUpdates) {
    requireMainThread();
    if (m_isCheckingForUpdates == isCheckingForUpdates)
        return;
    m_isCheckingForUpdates = isCheckingForUpdates;
    Q_EMIT isCheckingForUpdatesChanged(isCheckingForUpdates);
}

void UpdatingRepositoryStatus::setLastResults(const Results& lastResults) {
    requireMainThread();
    m_lastResults = lastResults;
    Q_EMIT lastResultsChanged();
}

void UpdatingRepositoryStatus::setErrors(const QList<GitHubRepositoryError>& errors) {
    requireMainThread();
    m_errors = errors;
    Q_EMIT errorsChanged();
}

void UpdatingRepositoryStatus::appendError(GitHubRepositoryError error) {
    requireMainThread();
    m_errors.append(error);
    Q_EMIT errorsChanged();
}

void UpdatingRepositoryStatus::requireMainThread() const {
    // Without an application object there is no other thread to mind.
    const QCoreApplication* application = QCoreApplication::instance();
    if (application && QThread::currentThread() != application->thread())
        qFatal("UpdatingRepositoryStatus changed outside the main thread");
}

} // namespace quorlin
