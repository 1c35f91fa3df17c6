#pragma once

#include "supply/LastUpdates.h"
#include "ui/ManifestUpdatesWindow.h"
#include "ui/PreferencesWindow.h"

#include <QObject>
#include <QPointer>

#include <functional>
#include <memory>

class QWidget;

namespace quorlin {

class DocumentReloader;
class NoticePresenter;
class PFMDomainManager;
class ProcessRestarter;
class UpdatingManifestRepository;
class UserDefaults;

// The application's side of the manifest repositories: what happens after
// launch, when the repository settings change, when all profiles reload and
// when the program is asked to end. Menus and toolbars only call into it.
class ManifestRepositoryCoordinator : public QObject {
    Q_OBJECT

public:
    ManifestRepositoryCoordinator(UserDefaults& defaults, PFMDomainManager& domainManager,
                                  DocumentReloader& documents, QObject* parent = nullptr);
    ~ManifestRepositoryCoordinator() override;

    // The online updates notice or window, and the alert about a missing local folder.
    void afterLaunch();
    // Created once, raised on every call.
    void showPreferences();
    void showManifestUpdates();
    void reloadAllProfiles();
    // The "Manifest Updates" toolbar button of a document window; it follows
    // the update state for as long as it lives.
    QWidget* makeUpdatesIndicator(QWidget* parent);
    // May wait for the verification of pending repository settings before replying.
    void shouldTerminate(std::function<void(bool mayQuit)> reply);

    // Seams, for tests: who answers notices (message boxes by default) and
    // how the factory reset starts the program again.
    void setNoticePresenter(NoticePresenter* presenter);
    void setProcessRestarter(ProcessRestarter* restarter);
    // The names of the user's signing identities, read whenever the
    // preferences are shown; none without it.
    void setSigningIdentityNames(std::function<QStringList()> names) {
        m_signingIdentityNames = std::move(names);
    }
    // Whether the preferences or the updates window shows: the program
    // stays while one does, even with no document left.
    bool hasVisibleWindow() const;
    // Made by the calls above; null before.
    PreferencesWindow* preferencesWindow() const { return m_preferences; }
    ManifestUpdatesWindow* manifestUpdatesWindow() const { return m_updates; }

Q_SIGNALS:
    // The preferences or the updates window was closed.
    void windowClosed();
    // The user typed a new organization or consent text for new profiles.
    void preferencesDefaultTextEdited(const QString& defaultsKey);

public Q_SLOTS:
    // Asks whether to reload now (unless suppressed) and waits for a running check.
    void manifestRepositorySettingsDidChange();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void showOnlineUpdatesNotice();
    bool repositorySettingsAreFactory() const;
    QList<UpdateResultsItem> itemsNewerThanBundled(const QList<UpdateResultsItem>& items);
    void showLocalRepositoryUnavailableNotice();
    void reloadAfterRunningCheck();
    ManifestUpdatesWindow& updatesWindow();
    void representCurrentRepository();
    UpdatingManifestRepository* representedRepository() const;
    static void raise(QWidget* window);

    UserDefaults& m_defaults;
    PFMDomainManager& m_domainManager;
    DocumentReloader& m_documents;
    std::unique_ptr<NoticePresenter> m_ownNotices;
    std::unique_ptr<ProcessRestarter> m_ownRestarter;
    NoticePresenter* m_notices = nullptr;
    ProcessRestarter* m_restarter = nullptr;
    QPointer<PreferencesWindow> m_preferences;
    QPointer<ManifestUpdatesWindow> m_updates;
    QMetaObject::Connection m_repositoryStatusObservation;
    std::function<QStringList()> m_signingIdentityNames;
};

} // namespace quorlin
