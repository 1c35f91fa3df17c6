#include "ui/ManifestRepositoryCoordinator.h"

#include "plist/DefaultsKey.h"
#include "plist/UserDefaults.h"
#include "shell/ApplicationNotice.h"
#include "shell/DetachedProcessRestarter.h"
#include "supply/GitHubManifestRepository.h"
#include "supply/PFMDomainManager.h"
#include "ui/DocumentReloader.h"
#include "ui/ManifestUpdatesWindow.h"
#include "ui/MessageBoxNoticePresenter.h"
#include "ui/PreferencesWindow.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QTimer>
#include <QToolButton>

namespace quorlin {

namespace {

using Key = ApplicationNotice::KeyEquivalent;

bool isLater(const std::optional<plist::Date>& date, const plist::Date& than) {
    // An undated item counts as the newest of all.
    return !date || date->secondsSinceReferenceDate > than.secondsSinceReferenceDate;
}

} // namespace

ManifestRepositoryCoordinator::ManifestRepositoryCoordinator(UserDefaults& defaults,
                                                             PFMDomainManager& domainManager,
                                                             DocumentReloader& documents, QObject* parent)
    : QObject(parent)
    , m_defaults(defaults)
    , m_domainManager(domainManager)
    , m_documents(documents)
    , m_ownNotices(std::make_unique<MessageBoxNoticePresenter>())
    , m_ownRestarter(std::make_unique<DetachedProcessRestarter>())
    , m_notices(m_ownNotices.get())
    , m_restarter(m_ownRestarter.get()) {
    // A reload replaces the repositories; the updates window follows the new one.
    connect(&m_domainManager, &PFMDomainManager::domainsChanged, this,
            &ManifestRepositoryCoordinator::representCurrentRepository);
}

ManifestRepositoryCoordinator::~ManifestRepositoryCoordinator() {
    delete m_preferences.data();
    delete m_updates.data();
}

void ManifestRepositoryCoordinator::setNoticePresenter(NoticePresenter* presenter) {
    m_notices = presenter ? presenter : m_ownNotices.get();
}

void ManifestRepositoryCoordinator::setProcessRestarter(ProcessRestarter* restarter) {
    m_restarter = restarter ? restarter : m_ownRestarter.get();
}

// After launching

void ManifestRepositoryCoordinator::afterLaunch() {
    if (!m_defaults.boolean(DefaultsKey::noticeSuppressOnlineManifestsUpdated).value_or(false))
        showOnlineUpdatesNotice();
    showLocalRepositoryUnavailableNotice();
}

bool ManifestRepositoryCoordinator::repositorySettingsAreFactory() const {
    for (const QString& key :
         {DefaultsKey::manifestRepositoryType, DefaultsKey::onlineManifestRepositoryAddress,
          DefaultsKey::onlineManifestRepositoryBranchName,
          DefaultsKey::maximizeNonStandardManifestCompatibility}) {
        if (m_defaults.value(key) != m_defaults.registeredValue(key))
            return false;
    }
    return true;
}

void ManifestRepositoryCoordinator::showOnlineUpdatesNotice() {
    const bool factory = repositorySettingsAreFactory();
    const bool filteringUnset = m_defaults.value(DefaultsKey::bundledToOnlineResultsFiltering).isNull();
    const ManifestRepository& main = m_domainManager.mainManifestRepository();
    if (factory && &main == &m_domainManager.bundledManifestRepository() && filteringUnset) {
        // The first move from the bundled manifests to the online ones: its
        // report would list every manifest, so it is filtered later.
        m_defaults.set(DefaultsKey::bundledToOnlineResultsFiltering, DefaultsValue::resultsFilter);
        return;
    }
    // The manager hands out its repositories read-only; the window only observes this one.
    auto* online = dynamic_cast<GitHubManifestRepository*>(const_cast<ManifestRepository*>(&main));
    if (!online || !online->lastUpdates() || online->lastUpdates()->updateResultsItems.isEmpty())
        return;
    const LastUpdates record = *online->lastUpdates();
    const auto seen = m_defaults.date(DefaultsKey::lastShownOnlineManifestsUpdateModificationDate);
    if (!seen || !isLater(record.updateTime, *seen))
        return;

    QList<UpdateResultsItem> items = record.updateResultsItems;
    const bool filter =
        m_defaults.string(DefaultsKey::bundledToOnlineResultsFiltering) == DefaultsValue::resultsFilter;
    m_defaults.set(DefaultsKey::bundledToOnlineResultsFiltering, DefaultsValue::resultsNoFilter);
    if (filter && factory) {
        items = itemsNewerThanBundled(items);
        if (items.isEmpty())
            return;
    }
    ManifestUpdatesWindow& window = updatesWindow();
    window.setRepository(online, true);
    window.setShowingLastResults(true);
    window.showStoredResults(items);
    raise(&window);
}

QList<UpdateResultsItem>
ManifestRepositoryCoordinator::itemsNewerThanBundled(const QList<UpdateResultsItem>& items) {
    const auto bundledDate = m_domainManager.bundledManifestRepository().mostRecentModificationDate();
    if (!bundledDate)
        return {};
    QList<UpdateResultsItem> newer;
    for (const auto& item : items) {
        if (isLater(item.manifestModificationDate, *bundledDate))
            newer << item;
    }
    return newer;
}

void ManifestRepositoryCoordinator::showLocalRepositoryUnavailableNotice() {
    for (const auto& error : m_domainManager.repositoryErrors()) {
        if (error.kind != DomainManagerError::Kind::localManifestRepositoryDirectoryNoLongerAvailable)
            continue;
        m_notices->present(nullptr, ApplicationNotice::localRepositoryUnavailable(error.path),
                           [this](const ApplicationNotice::Reply& reply) {
                               if (reply.tag != ApplicationNotice::accept)
                                   return;
                               showPreferences();
                               m_preferences->selectPane(PreferencesWindow::Pane::manifests);
                           });
        return;
    }
}

// Windows

void ManifestRepositoryCoordinator::showPreferences() {
    if (!m_preferences) {
        PreferencesWindow::Services services{
            *m_notices, *m_restarter,
            [this](std::function<void(bool)> done) { m_documents.closeAllDocuments(std::move(done)); },
            m_domainManager.defaultStandardizationSettings()};
        m_preferences = new PreferencesWindow(m_defaults, std::move(services));
        connect(m_preferences, &PreferencesWindow::manifestRepositoryDidChange, this,
                &ManifestRepositoryCoordinator::manifestRepositorySettingsDidChange);
        connect(m_preferences, &PreferencesWindow::profileDefaultTextEdited, this,
                &ManifestRepositoryCoordinator::preferencesDefaultTextEdited);
        m_preferences->installEventFilter(this);
    }
    if (m_signingIdentityNames)
        m_preferences->setSigningIdentityNames(m_signingIdentityNames());
    raise(m_preferences);
}

void ManifestRepositoryCoordinator::showManifestUpdates() {
    ManifestUpdatesWindow& window = updatesWindow();
    representCurrentRepository();
    raise(&window);
}

ManifestUpdatesWindow& ManifestRepositoryCoordinator::updatesWindow() {
    if (!m_updates) {
        m_updates = new ManifestUpdatesWindow(m_defaults);
        connect(m_updates, &ManifestUpdatesWindow::reloadAllProfilesRequested, this,
                &ManifestRepositoryCoordinator::reloadAllProfiles);
        m_updates->installEventFilter(this);
    }
    return *m_updates;
}

UpdatingManifestRepository* ManifestRepositoryCoordinator::representedRepository() const {
    if (auto* linedUp = m_domainManager.linedUpManifestRepository())
        return linedUp;
    auto& main = const_cast<ManifestRepository&>(m_domainManager.mainManifestRepository());
    return dynamic_cast<UpdatingManifestRepository*>(&main);
}

void ManifestRepositoryCoordinator::representCurrentRepository() {
    if (!m_updates)
        return;
    UpdatingManifestRepository* repository = representedRepository();
    QSet<QString> known;
    for (const auto& domain : m_domainManager.domains())
        known.insert(domain->domainString());
    m_updates->setKnownDomains(known);
    m_updates->setShowingLastResults(false);
    m_updates->setRepository(repository, repository == &m_domainManager.mainManifestRepository());
}

void ManifestRepositoryCoordinator::raise(QWidget* window) {
    window->show();
    window->raise();
    window->activateWindow();
}

QWidget* ManifestRepositoryCoordinator::makeUpdatesIndicator(QWidget* parent) {
    // The holder stays in the toolbar; only the button inside comes and goes.
    auto* holder = new QWidget(parent);
    auto* layout = new QHBoxLayout(holder);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* button = new QToolButton(holder);
    button->setObjectName(QStringLiteral("manifestUpdatesButton"));
    button->setText(tr("Manifest Updates"));
    button->setToolTip(tr("Preference manifests were updated. Reload to use them."));
    button->setVisible(m_domainManager.areUpdatesAvailable());
    layout->addWidget(button);
    connect(button, &QToolButton::clicked, this, &ManifestRepositoryCoordinator::showManifestUpdates);
    connect(&m_domainManager, &PFMDomainManager::areUpdatesAvailableChanged, button, &QWidget::setVisible);
    return holder;
}

// Reloading

void ManifestRepositoryCoordinator::reloadAllProfiles() {
    disconnect(std::exchange(m_repositoryStatusObservation, {}));
    m_domainManager.reloadRepositories();
    m_documents.reloadAllDocuments();
}

void ManifestRepositoryCoordinator::manifestRepositorySettingsDidChange() {
    m_domainManager.setWindowsShouldIndicateOnlineUpdates(true);
    if (m_defaults.boolean(DefaultsKey::noticeSuppressReloadProfileOnRepositoryChange).value_or(false))
        return;
    const int count = m_documents.openProfileDocumentCount();
    if (count == 0)
        return;
    QWidget* window = m_preferences && m_preferences->isVisible() ? m_preferences.data() : nullptr;
    m_notices->present(
        window, ApplicationNotice::reloadAfterRepositoryChange(count),
        [this](const ApplicationNotice::Reply& reply) {
            if (reply.suppress)
                m_defaults.set(DefaultsKey::noticeSuppressReloadProfileOnRepositoryChange, true);
            if (reply.tag != ApplicationNotice::accept) {
                m_domainManager.lineUpRepositoryFromSettings();
                return;
            }
            // After the notice has gone, so that no window closes under it.
            QTimer::singleShot(0, this, &ManifestRepositoryCoordinator::reloadAfterRunningCheck);
        });
}

void ManifestRepositoryCoordinator::reloadAfterRunningCheck() {
    auto* online = dynamic_cast<GitHubManifestRepository*>(m_domainManager.linedUpManifestRepository());
    if (!online || !online->status().isCheckingForUpdates()) {
        reloadAllProfiles();
        return;
    }
    showManifestUpdates();
    disconnect(m_repositoryStatusObservation);
    m_repositoryStatusObservation =
        connect(&online->status(), &UpdatingRepositoryStatus::isCheckingForUpdatesChanged, this,
                [this](bool checking) {
                    if (!checking)
                        reloadAllProfiles();
                });
}

// Ending

void ManifestRepositoryCoordinator::shouldTerminate(std::function<void(bool mayQuit)> reply) {
    if (!m_preferences || !m_preferences->isVisible()) {
        reply(true);
        return;
    }
    m_preferences->requestLeave(std::move(reply));
}

bool ManifestRepositoryCoordinator::hasVisibleWindow() const {
    return (m_preferences && m_preferences->isVisible()) || (m_updates && m_updates->isVisible());
}

bool ManifestRepositoryCoordinator::eventFilter(QObject* watched, QEvent* event) {
    // A minimized window is hidden too, yet still counts as visible.
    if (event->type() == QEvent::Hide && !static_cast<QWidget*>(watched)->isVisible())
        QTimer::singleShot(0, this, &ManifestRepositoryCoordinator::windowClosed);
    return QObject::eventFilter(watched, event);
}

} // namespace quorlin
