#pragma once

#include "supply/GitHubRepositoryError.h"
#include "supply/UpdateResultsItem.h"

#include <QList>

#include <QMap>
#include <QObject>
#include <QString>
#include <QStringList>

namespace quorlin {

// Progress and results of an updating repository, for the windows that
// show them. Observers run on the main thread, so every change is made
// there; a change from another thread is a fault of the program.
class UpdatingRepositoryStatus : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isCheckingForUpdates READ isCheckingForUpdates WRITE setIsCheckingForUpdates NOTIFY
                   isCheckingForUpdatesChanged)

public:
    // Domain to what happened to it.
    using Results = QMap<QString, UpdateResultsItem>;

    explicit UpdatingRepositoryStatus(QObject* parent = nullptr);

    bool isCheckingForUpdates() const { return m_isCheckingForUpdates; }
    void setIsCheckingForUpdates(bool isCheckingForUpdates);

    // What changed since the results were last shown; cleared when the
    // domains are reloaded.
    const Results& lastResults() const { return m_lastResults; }
    void setLastResults(const Results& lastResults);

    // Only network failures of the last refresh, in the order they
    // happened; standardization reports none.
    const QList<GitHubRepositoryError>& errors() const { return m_errors; }
    void setErrors(const QList<GitHubRepositoryError>& errors);
    void appendError(GitHubRepositoryError error);

Q_SIGNALS:
    void isCheckingForUpdatesChanged(bool isCheckingForUpdates);
    void lastResultsChanged();
    void errorsChanged();

private:
    void requireMainThread() const;

    bool m_isCheckingForUpdates = false;
    Results m_lastResults;
    QList<GitHubRepositoryError> m_errors;
};

} // namespace quorlin
