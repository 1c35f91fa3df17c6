#pragma once

#include "shell/AnalyticsHelper.h"
#include "shell/AnalyticsIntegration.h"
#include "shell/ApplicationStart.h"
#include "ui/ApplicationActions.h"
#include "ui/PassphraseDialog.h"

#include <QKeySequence>
#include <QObject>
#include <QStringList>

#include <functional>
#include <memory>

class QAction;

namespace quorlin {

class DocumentController;
class DocumentEventReporter;
class ManifestRepositoryCoordinator;
class QuorlinPreferencesHelper;
class NoticePresenter;
class PFMDomainManager;
class UserDefaults;

// The editor as a whole: the headless start, then the shared commands of the
// menus, the documents and the manifest repository's side, and the end of
// the program, which asks about each edited document first.
class EditorApplication : public QObject {
    Q_OBJECT

public:
    static inline const QString helpAddress = QStringLiteral("https://quorlin.com/profile-editor/help");

    explicit EditorApplication(UserDefaults& defaults, QObject* parent = nullptr);
    ~EditorApplication() override;

    // Opens the files given, or one empty document; refused files are reported.
    void launch(const QStringList& filePaths);
    // The same on a domain manager of the caller's, without the headless start.
    void launch(PFMDomainManager& domainManager, const QStringList& filePaths);
    // Asks about unsaved changes in each window, then ends the program.
    void quit();

    // Both made by launch().
    DocumentController& documents() const { return *m_documents; }
    ManifestRepositoryCoordinator& coordinator() const { return *m_coordinator; }
    // How the program ends once nothing holds it; quitting the event loop by default.
    void setTerminator(std::function<void()> terminate) { m_terminate = std::move(terminate); }

private:
    void makeActions();
    QAction* makeAction(const QString& title, const QKeySequence& shortcut);
    void terminateIfAllowed();
    void lastWindowMayHaveClosed();
    void showAbout();
    void startAnalytics(PFMDomainManager& domainManager);

    UserDefaults& m_defaults;
    // Sends nothing anywhere; the audit log, when the user turns it on, is local.
    AnalyticsIntegration m_analytics;
    ApplicationStart m_start;
    // Made at launch, once the bundled manifests are known; they outlive the documents.
    std::unique_ptr<AnalyticsHelper> m_analyticsHelper;
    std::unique_ptr<DocumentEventReporter> m_eventReporter;
    PassphraseDialog m_passphrases;
    std::unique_ptr<DocumentController> m_documents;
    ManifestRepositoryCoordinator* m_coordinator = nullptr;
    ApplicationActions m_actions;
    // The sibling product's profile library, watched for as long as the editor runs.
    QuorlinPreferencesHelper* m_library = nullptr;
    std::unique_ptr<NoticePresenter> m_inspectorNotices;
    std::function<void()> m_terminate;
    bool m_quitting = false;
};

} // namespace quorlin
