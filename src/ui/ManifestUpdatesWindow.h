#pragma once

#include "supply/UpdateResultsItem.h"

#include <QList>
#include <QPointer>
#include <QSet>
#include <QWidget>

#include <optional>

class QComboBox;
class QLabel;
class QProgressBar;
class QPushButton;
class QStackedWidget;
class QTreeWidget;

namespace quorlin {

class GitHubManifestRepository;
class UpdatingManifestRepository;
class UpdatingRepositoryStatus;
class UserDefaults;

// What the last refresh of a repository changed, or why it failed, or that
// a check still runs. It follows the repository's status while it lives.
class ManifestUpdatesWindow : public QWidget {
    Q_OBJECT

public:
    enum class State { checking = 0, reportingNoUpdates = 1, reportingUpdates = 2, reportingErrors = 3 };
    enum class DateDisplayOption { fileChange, manifestModification };

    explicit ManifestUpdatesWindow(UserDefaults& defaults, QWidget* parent = nullptr);
    ~ManifestUpdatesWindow() override;

    // `isMainRepository` picks the words of a failed index: the bundled
    // manifests "will be used" or "are used" instead.
    void setRepository(UpdatingManifestRepository* repository, bool isMainRepository);
    // A stored report shown in place of the repository's live results.
    void showStoredResults(const QList<UpdateResultsItem>& items);
    // Lists only what changed after the last report the user saw.
    void setShowingLastResults(bool showingLastResults);
    void setDateDisplayOption(DateDisplayOption option);
    // Closes by itself when a check ends with nothing to report.
    void setCloseAfterUpdatesCheck(bool close) { m_closeAfterUpdatesCheck = close; }
    // The domains in force; an updated domain among none of them is listed as added.
    void setKnownDomains(const QSet<QString>& domains);

    State state() const { return m_state; }
    QString errorMessage() const;
    // The domains listed now, in their order.
    QStringList listedDomains() const;
    // The status column of a listed domain; empty when it isn't listed.
    QString listedStatus(const QString& domain) const;

Q_SIGNALS:
    void reloadAllProfilesRequested();

private:
    void buildLayout();
    QWidget* buildCheckingPage();
    QWidget* buildResultsPage();
    void observeStatus();
    void statusChanged();
    void setState(State state);
    void showResults(const QList<UpdateResultsItem>& items);
    void fillList();
    bool isUnseen(const UpdateResultsItem& item) const;
    QString statusString(const UpdateResultsItem& item) const;
    void rememberNewestDate();
    void cancelCheck();
    void openCommitLog();

    UserDefaults& m_defaults;
    // Null once the repository is gone, as when the domain manager replaces it.
    QPointer<UpdatingRepositoryStatus> m_status;
    QPointer<GitHubManifestRepository> m_gitHubRepository;
    QList<QMetaObject::Connection> m_observations;
    bool m_isMainRepository = false;
    bool m_showingLastResults = false;
    std::optional<plist::Date> m_seenDate;
    QSet<QString> m_knownDomains;
    bool m_closeAfterUpdatesCheck = false;
    DateDisplayOption m_dateDisplayOption = DateDisplayOption::fileChange;
    State m_state = State::reportingNoUpdates;
    QList<UpdateResultsItem> m_items;
    QString m_errors;

    QStackedWidget* m_pages = nullptr;
    QProgressBar* m_progress = nullptr;
    QLabel* m_message = nullptr;
    QTreeWidget* m_list = nullptr;
    QComboBox* m_dateOption = nullptr;
    QPushButton* m_commitLogButton = nullptr;
    QPushButton* m_reloadButton = nullptr;
};

} // namespace quorlin
