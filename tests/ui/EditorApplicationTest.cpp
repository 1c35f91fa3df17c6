#include "ui/EditorApplication.h"

#include "EditorTestSupport.h"
#include "RepositoryUiFixtures.h"
#include "plist/DefaultsKey.h"
#include "shell/AuditLogAnalyticsSink.h"
#include "shell/QuorlinPreferencesHelper.h"
#include "ui/DocumentController.h"
#include "ui/DocumentWindow.h"
#include "ui/ManifestRepositoryCoordinator.h"
#include "ui/ManifestUpdatesWindow.h"
#include "ui/PreferencesWindow.h"
#include "workspace/PFMSection.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <QAbstractButton>
#include <QApplication>
#include <QDesktopServices>
#include <QLineEdit>
#include <QMessageBox>
#include <QTest>
#include <QUrl>

using namespace quorlin;
using namespace quorlin::test;

namespace {

// Takes the addresses the program hands to the desktop, in place of a browser.
class UrlCatcher : public QObject {
    Q_OBJECT

public:
    UrlCatcher() { QDesktopServices::setUrlHandler(QStringLiteral("https"), this, "open"); }
    ~UrlCatcher() override { QDesktopServices::unsetUrlHandler(QStringLiteral("https")); }

    QList<QUrl> opened;

public Q_SLOTS:
    void open(const QUrl& url) { opened << url; }
};

// The whole editor on the fixture's repository, answering notices and
// counting the ends of the program instead of ending this one.
class EditorApplicationTest : public RepositoryUiTest {
protected:
    void SetUp() override {
        RepositoryUiTest::SetUp();
        m_manager = makeManager();
        m_application = std::make_unique<EditorApplication>(m_defaults);
    }
    void TearDown() override {
        m_application.reset();
        RepositoryUiTest::TearDown();
    }
    void launch() {
        m_application->launch(*m_manager, {});
        coordinator().setNoticePresenter(&m_notices);
        coordinator().setProcessRestarter(&m_restarter);
        m_application->setTerminator([this] { ++m_terminations; });
        QCoreApplication::processEvents();
    }
    DocumentController& documents() { return m_application->documents(); }
    ManifestRepositoryCoordinator& coordinator() { return m_application->coordinator(); }
    DocumentWindow& onlyWindow() {
        EXPECT_EQ(documents().windows().size(), 1);
        return *documents().windows().front();
    }
    bool waitForReload() {
        const bool reloaded = QTest::qWaitFor(
            [&] { return !documents().isReloading() && !documents().windows().isEmpty(); }, 10000);
        EXPECT_TRUE(reloaded) << "reloading " << documents().isReloading() << ", windows "
                              << documents().windows().size() << ", question "
                              << (visibleWidget(DocumentWindow::closeQuestionObjectName) != nullptr)
                              << ", edited "
                              << (documents().windows().isEmpty()
                                      ? -1
                                      : documents().windows().front()->document().changeCount());
        return reloaded;
    }

    static void rename(DocumentWindow& window, const QString& name) {
        window.history().setValue(
            window.document().profile()->rootPayload()->keyAtPath(QStringLiteral("PayloadDisplayName")),
            plist::Value(name), QStringLiteral("PayloadDisplayName"));
    }
    // Answers the window-modal question about unsaved changes that shows now.
    static bool answerCloseQuestion(const QString& title) {
        auto* question = waitForWidget<QMessageBox>(DocumentWindow::closeQuestionObjectName);
        if (!question)
            return false;
        for (QAbstractButton* button : question->buttons()) {
            if (button->text().remove(u'&') == title) {
                button->click();
                return true;
            }
        }
        return false;
    }
    PreferencesWindow* showManifestsPane() {
        coordinator().showPreferences();
        PreferencesWindow* preferences = coordinator().preferencesWindow();
        if (preferences)
            preferences->selectPane(PreferencesWindow::Pane::manifests);
        return preferences;
    }

    std::unique_ptr<PFMDomainManager> m_manager;
    std::unique_ptr<EditorApplication> m_application;
    int m_terminations = 0;
};

bool hasSectionForDomain(DocumentWindow& window, const QString& domain) {
    for (PFMSection* section : window.sections().content()) {
        if (section->domains().contains(domain))
            return true;
    }
    return false;
}

} // namespace

TEST_F(EditorApplicationTest, NewRepositorySettingsReachTheOpenDocumentWindow) {
    launch();
    ASSERT_FALSE(hasSectionForDomain(onlyWindow(), "com.example.online"));

    // The user turns to the server's repository and verifies it.
    PreferencesWindow* preferences = showManifestsPane();
    ASSERT_TRUE(preferences && preferences->isVisible());
    UrlCatcher browser;
    click(preferences, "manifestsHelpButton");
    EXPECT_EQ(browser.opened, QList<QUrl>{QUrl(EditorApplication::helpAddress)});
    click(preferences, "onlineTypeButton");
    type(preferences, "onlineAddressTextField", address);
    type(preferences, "onlineBranchTextField", branch);
    click(preferences, "verifyButton");
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_notices.waiting() != nullptr; }, 20000));
    EXPECT_EQ(m_notices.waiting()->notice.title, "Reload Profile?");
    m_notices.answer(ApplicationNotice::accept);
    ASSERT_TRUE(waitForReload());

    // The download comes after the reload; the window's toolbar offers it.
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_manager->areUpdatesAvailable(); }, 20000));
    DocumentWindow& reopened = onlyWindow();
    EXPECT_FALSE(hasSectionForDomain(reopened, "com.example.online"));
    auto* updatesButton = child<QAbstractButton>(&reopened, "manifestUpdatesButton");
    ASSERT_TRUE(updatesButton);
    ASSERT_TRUE(QTest::qWaitFor([&] { return updatesButton->isVisibleTo(&reopened); }));
    updatesButton->click();
    ManifestUpdatesWindow* updates = coordinator().manifestUpdatesWindow();
    ASSERT_TRUE(updates && updates->isVisible());
    EXPECT_EQ(updates->state(), ManifestUpdatesWindow::State::reportingUpdates);
    EXPECT_EQ(updates->listedStatus("com.example.online"), "Added");
    EXPECT_EQ(updates->listedStatus("com.example.mail"), "Updated");

    click(updates, "reloadAllProfilesButton");
    // Focus moved through the untouched document's fields without an edit,
    // so the reload closes it without asking.
    ASSERT_TRUE(waitForReload());
    EXPECT_FALSE(visibleWidget(DocumentWindow::closeQuestionObjectName));
    DocumentWindow& updated = onlyWindow();
    EXPECT_TRUE(hasSectionForDomain(updated, "com.example.online"));
    EXPECT_TRUE(updated.isVisible());
    EXPECT_FALSE(m_manager->areUpdatesAvailable());
    EXPECT_EQ(m_terminations, 0) << "reloads close every window without ending the program";
}

TEST_F(EditorApplicationTest, QuittingAsksEachEditedDocumentAndCancelStops) {
    launch();
    DocumentWindow* first = documents().newDocument();
    DocumentWindow* second = documents().newDocument();
    rename(*first, "First");
    rename(*second, "Second");
    ASSERT_EQ(documents().windows().size(), 3);

    // The unedited window goes without a word, the first edited one is
    // discarded, and Cancel on the second stops the quitting there.
    m_application->quit();
    ASSERT_TRUE(answerCloseQuestion(DocumentWindow::dontSaveTitle));
    ASSERT_TRUE(answerCloseQuestion("Cancel"));
    QCoreApplication::processEvents();
    EXPECT_EQ(m_terminations, 0);
    EXPECT_EQ(documents().windows(), QList<DocumentWindow*>{second});
    EXPECT_TRUE(second->isVisible());

    // Asked again, the one edit left has its question; then the program ends once.
    m_application->quit();
    ASSERT_TRUE(answerCloseQuestion(DocumentWindow::dontSaveTitle));
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_terminations == 1; }));
    EXPECT_TRUE(documents().windows().isEmpty());
    QTest::qWait(20);
    EXPECT_EQ(m_terminations, 1);
}

TEST_F(EditorApplicationTest, DocumentsReportTheirBundledPayloadsToTheLocalAuditLogOnlyWhenItIsOn) {
    launch();
    DocumentWindow& window = onlyWindow();
    PFMSection* browser = nullptr;
    for (PFMSection* section : window.sections().content()) {
        if (section->domains().contains(QStringLiteral("com.example.browser")))
            browser = section;
    }
    ASSERT_TRUE(browser);
    const QString log = AuditLogAnalyticsSink::standardFilePath();
    window.addPayload(*browser);
    EXPECT_FALSE(QFile::exists(log)) << "nothing is kept unless asked for";

    m_defaults.set(DefaultsKey::analyticsAuditLogEnabled, true);
    window.addPayload(*browser);
    QFile file(log);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_TRUE(
        QString::fromUtf8(file.readAll()).endsWith("\tPayload added\tDomainString=com.example.browser\n"));
}

TEST_F(EditorApplicationTest, TheLibraryCommandIsThereOnlyWithTheSiblingProductsLibraryAndSavesInIt) {
    launch();
    onlyWindow().updateCommandStates();
    EXPECT_FALSE(onlyWindow().saveToQuorlinLibraryAction()->isVisible());

    // The sibling product's preference file names its library.
    const QString profiles = m_folder.filePath("Quorlin Library/Profiles");
    ASSERT_TRUE(QDir().mkpath(profiles));
    const QString preferences = QuorlinPreferencesHelper::standardPreferencesFilePath();
    ASSERT_TRUE(writeManifest(preferences, {{"LibraryPath", m_folder.filePath("Quorlin Library")}}));
    m_application = std::make_unique<EditorApplication>(m_defaults);
    launch();
    DocumentWindow& window = onlyWindow();
    window.updateCommandStates();
    ASSERT_TRUE(window.saveToQuorlinLibraryAction()->isVisible());
    window.saveToQuorlinLibraryAction()->trigger();
    const auto identifier = window.document().profile()->payloadIdentifier();
    ASSERT_TRUE(identifier);
    EXPECT_EQ(window.document().filePath(), profiles + "/" + *identifier + ".mobileconfig");
    EXPECT_TRUE(QFileInfo::exists(profiles + "/" + *identifier + ".mobileconfig"));
    EXPECT_FALSE(window.document().isDocumentEdited());
}

TEST_F(EditorApplicationTest, OpenPreferencesHoldTheProgramAndAreAskedBeforeItEnds) {
    launch();
    // The last document window closes while the preferences show: the program stays.
    PreferencesWindow* preferences = showManifestsPane();
    ASSERT_TRUE(preferences);
    onlyWindow().close();
    ASSERT_TRUE(QTest::qWaitFor([&] { return documents().windows().isEmpty(); }));
    QTest::qWait(20);
    EXPECT_EQ(m_terminations, 0);

    // Entries that can't pass keep the window and the program.
    click(preferences, "onlineTypeButton");
    type(preferences, "onlineAddressTextField", "https://example.com/not/github");
    DocumentWindow* kept = documents().newDocument();
    m_application->quit();
    QCoreApplication::processEvents();
    EXPECT_EQ(m_terminations, 0);
    EXPECT_TRUE(preferences->isVisible());
    // The preferences are asked before any document closes.
    EXPECT_EQ(documents().windows(), QList<DocumentWindow*>{kept});
    while (m_notices.waiting())
        m_notices.answer(ApplicationNotice::accept);
    kept->close();
    ASSERT_TRUE(QTest::qWaitFor([&] { return documents().windows().isEmpty(); }));

    // Back to the stored settings, closing the last window ends the program.
    click(preferences, "bundledTypeButton");
    preferences->close();
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_terminations == 1; }));

    // The updates window holds the program the same way.
    m_terminations = 0;
    documents().newDocument();
    coordinator().showManifestUpdates();
    onlyWindow().close();
    ASSERT_TRUE(QTest::qWaitFor([&] { return documents().windows().isEmpty(); }));
    QTest::qWait(20);
    EXPECT_EQ(m_terminations, 0);
    coordinator().manifestUpdatesWindow()->close();
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_terminations == 1; }));
}

#include "EditorApplicationTest.moc"
