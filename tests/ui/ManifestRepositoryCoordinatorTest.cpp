#include "ui/ManifestRepositoryCoordinator.h"

#include "RepositoryUiFixtures.h"
#include "supply/FolderBookmark.h"
#include "supply/GitHubManifestRepository.h"
#include "ui/ManifestUpdatesWindow.h"
#include "ui/PreferencesWindow.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLineEdit>
#include <QTabWidget>
#include <QTest>

using namespace quorlin;
using namespace quorlin::test;

namespace {

QStringList domainStrings(const Profile::DomainList& domains) {
    QStringList strings;
    for (const auto& domain : domains)
        strings << domain->domainString();
    return strings;
}

class ManifestRepositoryCoordinatorTest : public RepositoryUiTest {
protected:
    void SetUp() override {
        RepositoryUiTest::SetUp();
        relaunch();
    }
    // A new start on the settings as they are now.
    void relaunch() {
        m_coordinator.reset();
        m_documents.reset();
        m_manager = makeManager();
        m_documents = std::make_unique<ProfileDocumentShelf>(*m_manager, m_defaults);
        makeCoordinator();
    }
    void makeCoordinator() {
        m_coordinator = std::make_unique<ManifestRepositoryCoordinator>(m_defaults, *m_manager, *m_documents);
        m_coordinator->setNoticePresenter(&m_notices);
        m_coordinator->setProcessRestarter(&m_restarter);
    }

    std::unique_ptr<PFMDomainManager> m_manager;
    std::unique_ptr<ProfileDocumentShelf> m_documents;
    std::unique_ptr<ManifestRepositoryCoordinator> m_coordinator;
};

} // namespace

TEST_F(ManifestRepositoryCoordinatorTest, NewOnlineSettingsReachAnOpenDocumentThroughTheUpdatesWindow) {
    m_documents->open();
    ASSERT_FALSE(
        domainStrings(m_documents->documents.front()->profile()->domains()).contains("com.example.online"));
    QWidget toolbar;
    QWidget* indicator = m_coordinator->makeUpdatesIndicator(&toolbar);
    auto* updatesButton = child<QAbstractButton>(indicator, "manifestUpdatesButton");
    toolbar.show();
    EXPECT_FALSE(updatesButton->isVisible());

    // The user enters the online repository and verifies it.
    m_coordinator->setSigningIdentityNames([] { return QStringList{"Alice"}; });
    m_coordinator->showPreferences();
    PreferencesWindow* preferences = m_coordinator->preferencesWindow();
    ASSERT_TRUE(preferences && preferences->isVisible());
    EXPECT_EQ(child<QComboBox>(preferences, "defaultSigningIdentityPopUpButton")->findText("Alice"), 1);
    preferences->selectPane(PreferencesWindow::Pane::manifests);
    click(preferences, "onlineTypeButton");
    type(preferences, "onlineAddressTextField", address);
    type(preferences, "onlineBranchTextField", branch);
    click(preferences, "verifyButton");

    // Once stored, the one open profile may reload.
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_notices.waiting() != nullptr; }, 20000));
    const ApplicationNotice& question = m_notices.waiting()->notice;
    EXPECT_EQ(question.title, "Reload Profile?");
    EXPECT_EQ(question.buttons.front().title, "Reload Profile");
    EXPECT_EQ(question.informativeText,
              "Changes made to the manifest repository settings will only be reflected after reloading.");
    m_notices.answer(ApplicationNotice::accept);
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_documents->reloads == 1; }, 5000));

    // The first download waits in line, and the toolbar offers what it brought.
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_manager->areUpdatesAvailable(); }, 20000));
    EXPECT_TRUE(updatesButton->isVisible());
    EXPECT_FALSE(
        domainStrings(m_documents->documents.front()->profile()->domains()).contains("com.example.online"));
    updatesButton->click();
    ManifestUpdatesWindow* updates = m_coordinator->manifestUpdatesWindow();
    ASSERT_TRUE(updates && updates->isVisible());
    EXPECT_EQ(updates->state(), ManifestUpdatesWindow::State::reportingUpdates);
    const QStringList listed = updates->listedDomains();
    EXPECT_EQ(listed.size(), 3) << listed.join(", ").toStdString();
    EXPECT_EQ(updates->listedStatus("com.example.online"), "Added");
    EXPECT_EQ(updates->listedStatus("com.example.mail"), "Updated");

    click(updates, "reloadAllProfilesButton");
    EXPECT_EQ(m_documents->reloads, 2);
    const auto& domains = m_documents->documents.front()->profile()->domains();
    ASSERT_TRUE(domainStrings(domains).contains("com.example.online"));
    for (const auto& domain : domains) {
        if (domain->domainString() == "com.example.mail") {
            EXPECT_EQ(domain->title(), "Online com.example.mail");
        }
    }
    EXPECT_FALSE(m_manager->areUpdatesAvailable());
    EXPECT_FALSE(updatesButton->isVisible());
}

TEST_F(ManifestRepositoryCoordinatorTest, TheReloadQuestionFollowsTheOpenDocumentsAndItsSuppression) {
    // No document open: nothing to ask.
    m_coordinator->manifestRepositorySettingsDidChange();
    EXPECT_TRUE(m_notices.presented.empty());

    m_documents->open();
    m_documents->open();
    const QString folder = m_folder.filePath("local");
    ASSERT_TRUE(writeManifest(folder + "/General.plist", manifestTree("", {})));
    m_defaults.set(DefaultsKey::manifestRepositoryType, DefaultsValue::repositoryTypeLocal);
    m_defaults.set(DefaultsKey::localRepositoryPathBookmark, FolderBookmark::data(folder));
    m_coordinator->manifestRepositorySettingsDidChange();
    ASSERT_TRUE(m_notices.waiting());
    EXPECT_EQ(m_notices.waiting()->notice.title, "Reload Profiles?");
    EXPECT_EQ(m_notices.waiting()->notice.buttons.front().title, "Reload All Profiles");
    EXPECT_EQ(m_notices.waiting()->notice.suppressionKey,
              DefaultsKey::noticeSuppressReloadProfileOnRepositoryChange);
    // Dismissed with the box ticked: the new repository waits in line, and no question comes again.
    m_notices.answer(ApplicationNotice::dismiss, true);
    EXPECT_TRUE(
        m_defaults.boolean(DefaultsKey::noticeSuppressReloadProfileOnRepositoryChange).value_or(false));
    ASSERT_TRUE(m_manager->linedUpManifestRepository());
    EXPECT_EQ(m_documents->reloads, 0);
    m_coordinator->manifestRepositorySettingsDidChange();
    EXPECT_EQ(m_notices.presented.size(), 1u);

    m_coordinator->reloadAllProfiles();
    EXPECT_EQ(m_documents->reloads, 1);
    EXPECT_EQ(m_manager->linedUpManifestRepository(), nullptr);
}

TEST_F(ManifestRepositoryCoordinatorTest, AfterLaunchAnUnavailableLocalFolderLeadsToTheManifestsPane) {
    m_defaults.set(DefaultsKey::manifestRepositoryType, DefaultsValue::repositoryTypeLocal);
    m_defaults.set(DefaultsKey::localRepositoryPathBookmark, QByteArray("not/a/folder"));
    m_defaults.set(DefaultsKey::noticeSuppressOnlineManifestsUpdated, true);
    relaunch();

    m_coordinator->afterLaunch();
    ASSERT_TRUE(m_notices.waiting());
    EXPECT_EQ(m_notices.waiting()->notice.title, "Local Manifest Repository Folder Unavailable");
    EXPECT_EQ(m_notices.waiting()->notice.informativeText,
              "The folder set as the local manifest repository is not available.\n\n"
              "Bundled preference manifests are used instead.");
    m_notices.answer(ApplicationNotice::accept);
    ASSERT_TRUE(m_coordinator->preferencesWindow());
    EXPECT_TRUE(m_coordinator->preferencesWindow()->isVisible());
    EXPECT_EQ(m_coordinator->preferencesWindow()->findChild<QTabWidget*>()->currentIndex(),
              int(PreferencesWindow::Pane::manifests));
    EXPECT_TRUE(m_defaults.value(DefaultsKey::bundledToOnlineResultsFiltering).isNull())
        << "a suppressed updates notice sets no filter mark";
}

TEST_F(ManifestRepositoryCoordinatorTest, QuittingWaitsForEnteredSettingsToPass) {
    bool replied = false;
    bool mayQuit = false;
    const auto reply = [&](bool may) {
        replied = true;
        mayQuit = may;
    };
    m_coordinator->shouldTerminate(reply);
    EXPECT_TRUE(replied && mayQuit) << "without preferences";

    m_coordinator->showPreferences();
    PreferencesWindow* preferences = m_coordinator->preferencesWindow();
    preferences->selectPane(PreferencesWindow::Pane::manifests);
    click(preferences, "onlineTypeButton");
    type(preferences, "onlineAddressTextField", "https://example.com/not/github");
    replied = false;
    m_coordinator->shouldTerminate(reply);
    EXPECT_TRUE(replied);
    EXPECT_FALSE(mayQuit) << "invalid entries keep the program open";

    type(preferences, "onlineAddressTextField", address);
    type(preferences, "onlineBranchTextField", branch);
    replied = false;
    m_coordinator->shouldTerminate(reply);
    EXPECT_FALSE(replied) << "the answer waits for the server";
    ASSERT_TRUE(QTest::qWaitFor([&] { return replied; }, 20000));
    EXPECT_TRUE(mayQuit);
    EXPECT_EQ(m_defaults.string(DefaultsKey::onlineManifestRepositoryAddress), address);
}

TEST_F(ManifestRepositoryCoordinatorTest, AfterLaunchTheFirstMoveOnlineIsMarkedAndLaterUpdatesAreShown) {
    // Factory settings whose online store is still empty: the bundled manifests serve.
    m_defaults.remove(DefaultsKey::manifestRepositoryType);
    relaunch();
    m_coordinator->afterLaunch();
    EXPECT_EQ(m_defaults.string(DefaultsKey::bundledToOnlineResultsFiltering), DefaultsValue::resultsFilter);
    EXPECT_EQ(m_coordinator->manifestUpdatesWindow(), nullptr);

    // A repository of the user's own whose last download changed manifests.
    m_defaults.set(DefaultsKey::manifestRepositoryType, DefaultsValue::repositoryTypeOnline);
    m_defaults.set(DefaultsKey::onlineManifestRepositoryAddress, address);
    relaunch();
    auto* linedUp = m_manager->linedUpManifestRepository();
    ASSERT_TRUE(linedUp);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !linedUp->status().isCheckingForUpdates(); }, 20000));
    relaunch();
    ASSERT_TRUE(dynamic_cast<const GitHubManifestRepository*>(&m_manager->mainManifestRepository()));

    m_defaults.set(DefaultsKey::noticeSuppressOnlineManifestsUpdated, true);
    m_coordinator->afterLaunch();
    EXPECT_EQ(m_coordinator->manifestUpdatesWindow(), nullptr) << "suppressed";

    m_defaults.remove(DefaultsKey::noticeSuppressOnlineManifestsUpdated);
    m_coordinator->afterLaunch();
    ManifestUpdatesWindow* updates = m_coordinator->manifestUpdatesWindow();
    ASSERT_TRUE(updates && updates->isVisible());
    EXPECT_TRUE(updates->listedDomains().contains("com.example.online"));
    EXPECT_EQ(m_defaults.string(DefaultsKey::bundledToOnlineResultsFiltering),
              DefaultsValue::resultsNoFilter);
}
