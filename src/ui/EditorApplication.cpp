#include "ui/EditorApplication.h"

#include "documents/ProfileSigningBridge.h"
#include "documents/SigningProfileEnvironment.h"
#include "documents/SigningServices.h"
#include "plist/ApplicationIdentity.h"
#include "shell/AuditLogAnalyticsSink.h"
#include "shell/QuorlinPreferencesHelper.h"
#include "supply/PFMDomainManager.h"
#include "ui/AnalyticsEventReporter.h"
#include "ui/AppFileDialog.h"
#include "ui/AppInspectorWindow.h"
#include "ui/DocumentController.h"
#include "ui/DocumentWindow.h"
#include "ui/ManifestRepositoryCoordinator.h"
#include "ui/ManifestUpdatesWindow.h"
#include "ui/MessageBoxNoticePresenter.h"
#include "ui/PreferencesWindow.h"

#include <QAction>
#include <QApplication>
#include <QDesktopServices>
#include <QMessageBox>
#include <QTimer>
#include <QUrl>

namespace quorlin {

EditorApplication::EditorApplication(UserDefaults& defaults, QObject* parent)
    : QObject(parent)
    , m_defaults(defaults)
    , m_analytics(
          std::make_shared<AuditLogAnalyticsSink>(defaults, AuditLogAnalyticsSink::standardFilePath()))
    , m_start(defaults, m_analytics, ApplicationIdentity::shortVersionString())
    , m_library(new QuorlinPreferencesHelper(QuorlinPreferencesHelper::standardPreferencesFilePath(), this))
    , m_terminate([] { QCoreApplication::quit(); }) {}

EditorApplication::~EditorApplication() = default;

void EditorApplication::launch(const QStringList& filePaths) {
    m_start.run();
    launch(*m_start.domainManager(), filePaths);
}

void EditorApplication::launch(PFMDomainManager& domainManager, const QStringList& filePaths) {
    startAnalytics(domainManager);
    DocumentController::Supply supply;
    supply.eventReporter = m_eventReporter.get();
    supply.libraryFolder = [library = m_library] { return library->quorlinLibraryURL(); };
    supply.domains = [&domainManager] { return domainManager.domains(); };
    // Read for each document, so a change of the preferences reaches the next new profile.
    supply.environment = [this] {
        return SigningProfileEnvironment::make(m_defaults, SigningServices(&m_passphrases));
    };
    supply.isIdentityTrusted = [this](const QString& name) {
        const SigningServices signing(&m_passphrases);
        const auto identity = signing.identityNamed(name);
        return identity && signing.isTrusted(*identity);
    };
    m_documents = std::make_unique<DocumentController>(m_defaults, std::move(supply));
    m_coordinator = new ManifestRepositoryCoordinator(m_defaults, domainManager, *m_documents, this);
    m_coordinator->setSigningIdentityNames(
        [this] { return ProfileSigningBridge(SigningServices(&m_passphrases)).identityCommonNames(); });
    makeActions();
    m_documents->setApplicationActions(&m_actions);
    connect(m_coordinator, &ManifestRepositoryCoordinator::preferencesDefaultTextEdited, m_documents.get(),
            &DocumentController::updatePreferencesDefault);
    // Closing the last window ends the program, unless a reload is on its way.
    QApplication::setQuitOnLastWindowClosed(false);
    connect(m_documents.get(), &DocumentController::lastWindowClosed, this,
            &EditorApplication::lastWindowMayHaveClosed);
    connect(m_coordinator, &ManifestRepositoryCoordinator::windowClosed, this,
            &EditorApplication::lastWindowMayHaveClosed);

    if (filePaths.isEmpty())
        m_documents->openUntitledAtLaunch();
    else
        m_documents->openDocuments(filePaths);
    // Once the first window stands.
    QTimer::singleShot(0, m_coordinator, &ManifestRepositoryCoordinator::afterLaunch);
}

QAction* EditorApplication::makeAction(const QString& title, const QKeySequence& shortcut) {
    auto* action = new QAction(title, this);
    action->setShortcut(shortcut);
    return action;
}

void EditorApplication::makeActions() {
    DocumentController* documents = m_documents.get();
    m_actions.newDocument = makeAction(QStringLiteral("&New"), QKeySequence::New);
    connect(m_actions.newDocument, &QAction::triggered, documents, &DocumentController::newDocument);
    m_actions.open = makeAction(QStringLiteral("&Open…"), QKeySequence::Open);
    connect(m_actions.open, &QAction::triggered, documents,
            [documents] { documents->showOpenDialog(QApplication::activeWindow()); });
    m_actions.inspectApp = makeAction(QStringLiteral("&Inspect App…"), QKeySequence());
    m_inspectorNotices = std::make_unique<MessageBoxNoticePresenter>();
    connect(m_actions.inspectApp, &QAction::triggered, this, [this] {
        AppInspectorWindow::inspect(AppFileDialog::choose(QApplication::activeWindow()), *m_inspectorNotices);
    });
    m_actions.closeAll =
        makeAction(QStringLiteral("Close A&ll"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_W));
    connect(m_actions.closeAll, &QAction::triggered, documents,
            [documents] { documents->closeAllDocuments({}); });
    m_actions.quit = makeAction(QStringLiteral("&Quit"), QKeySequence::Quit);
    m_actions.quit->setMenuRole(QAction::QuitRole);
    connect(m_actions.quit, &QAction::triggered, this, &EditorApplication::quit);

    m_actions.preferences =
        makeAction(QStringLiteral("Pre&ferences…"), QKeySequence(Qt::CTRL | Qt::Key_Comma));
    m_actions.preferences->setMenuRole(QAction::PreferencesRole);
    connect(m_actions.preferences, &QAction::triggered, m_coordinator,
            &ManifestRepositoryCoordinator::showPreferences);
    m_actions.manifestUpdates = makeAction(QStringLiteral("Manifest &Updates…"), QKeySequence());
    connect(m_actions.manifestUpdates, &QAction::triggered, m_coordinator,
            &ManifestRepositoryCoordinator::showManifestUpdates);
    m_actions.reloadAllProfiles = makeAction(QStringLiteral("Reload All &Profiles"), QKeySequence());
    connect(m_actions.reloadAllProfiles, &QAction::triggered, m_coordinator,
            &ManifestRepositoryCoordinator::reloadAllProfiles);

    m_actions.help = makeAction(QStringLiteral("%1 &Help").arg(ApplicationIdentity::displayName()),
                                QKeySequence::HelpContents);
    connect(m_actions.help, &QAction::triggered, this, [] { QDesktopServices::openUrl(QUrl(helpAddress)); });
    m_actions.about =
        makeAction(QStringLiteral("&About %1").arg(ApplicationIdentity::displayName()), QKeySequence());
    m_actions.about->setMenuRole(QAction::AboutRole);
    connect(m_actions.about, &QAction::triggered, this, &EditorApplication::showAbout);

    m_actions.fillRecentMenu = [documents](QMenu& menu) { documents->fillRecentMenu(menu); };
    m_actions.fillWindowMenu = [documents](QMenu& menu) { documents->fillWindowMenu(menu); };
    m_actions.makeUpdatesIndicator = [coordinator = m_coordinator](QWidget* parent) {
        return coordinator->makeUpdatesIndicator(parent);
    };
}

// Pending repository settings are settled before any document closes, so a
// user who stays to correct them finds the documents as they were.
void EditorApplication::quit() {
    m_quitting = true;
    m_coordinator->shouldTerminate([this](bool mayQuit) {
        if (!mayQuit) {
            m_quitting = false;
            return;
        }
        m_documents->closeAllDocuments([this](bool allClosed) {
            m_quitting = false;
            if (allClosed)
                m_terminate();
        });
    });
}

// The preferences and the updates window count as windows of their own.
void EditorApplication::lastWindowMayHaveClosed() {
    if (m_quitting || !m_documents->windows().isEmpty() || m_documents->isReloading() ||
        m_coordinator->hasVisibleWindow())
        return;
    terminateIfAllowed();
}

// The preferences may hold repository settings that want checking before the end.
void EditorApplication::terminateIfAllowed() {
    m_coordinator->shouldTerminate([this](bool terminate) {
        if (terminate)
            m_terminate();
    });
}

// Only the domains of the bundled manifests are ever counted: a domain of
// the user's own could name a customer.
void EditorApplication::startAnalytics(PFMDomainManager& domainManager) {
    m_analytics.setup(AnalyticsIntegration::applicationSecret());
    m_analyticsHelper = std::make_unique<AnalyticsHelper>(m_analytics, [&domainManager] {
        plist::Array manifests;
        for (const plist::Dictionary& manifest :
             domainManager.bundledManifestRepository().standardizedManifests())
            manifests.append(manifest);
        return AnalyticsHelper::payloadDomainsOf(manifests);
    });
    m_eventReporter = std::make_unique<AnalyticsEventReporter>(*m_analyticsHelper);
}

void EditorApplication::showAbout() {
    QMessageBox::about(
        QApplication::activeWindow(), QStringLiteral("About %1").arg(ApplicationIdentity::displayName()),
        QStringLiteral("<b>%1</b><p>Version %2</p><p>An editor of configuration profiles.</p>")
            .arg(ApplicationIdentity::displayName(), ApplicationIdentity::shortVersionString()));
}

} // namespace quorlin
