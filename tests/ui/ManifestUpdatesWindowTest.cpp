#include "ui/ManifestUpdatesWindow.h"

#include "RepositoryUiFixtures.h"
#include "supply/GitHubManifestRepository.h"

#include <QAbstractButton>
#include <QDesktopServices>
#include <QProgressBar>
#include <QTest>

using namespace quorlin;
using namespace quorlin::test;
using State = ManifestUpdatesWindow::State;

namespace {

// Stands in for the browser: the desktop hands it the addresses to open.
class OpenedUrls : public QObject {
    Q_OBJECT

public:
    QList<QUrl> urls;

public Q_SLOTS:
    void open(const QUrl& url) { urls << url; }
};

class ManifestUpdatesWindowTest : public RepositoryUiTest {
protected:
    void SetUp() override {
        RepositoryUiTest::SetUp();
        m_window.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&m_window));
    }
    std::unique_ptr<GitHubManifestRepository> makeRepository() {
        return GitHubManifestRepository::make(m_folder.filePath("store"), address, branch, std::nullopt);
    }
    static UpdateResultsItem
    item(const QString& domain, std::optional<double> modified,
         UpdateResultsItem::UpdateStatuses status = UpdateResultsItem::UpdateStatuses::updated) {
        UpdateResultsItem result;
        result.domain = domain;
        result.status = status;
        if (modified) {
            result.manifestModificationDate = plist::Date{*modified};
            result.fileModificationDate = plist::Date{1000.0 - *modified};
        }
        return result;
    }

    ManifestUpdatesWindow m_window{m_defaults};
};

} // namespace

TEST_F(ManifestUpdatesWindowTest, AFailedCheckReportsTheFirstErrorInTheReportsWords) {
    struct Case {
        QByteArray index;
        int status;
        bool isMain;
        QString message;
    };
    const QString prefix = "Preference manifests cannot be downloaded from the online repository because ";
    for (const Case& c :
         {Case{{}, 404, true, prefix + "the repository index could not be fetched."},
          Case{"no plist", 200, true,
               prefix + "the repository index could not be parsed. Bundled manifests will be used instead."},
          Case{"no plist", 200, false,
               prefix + "the repository index could not be parsed. Bundled manifests are used instead."}}) {
        m_server.clearOverrides();
        m_server.setStatus(indexPath(), c.status);
        if (!c.index.isEmpty())
            m_server.setBody(indexPath(), c.index);
        auto repository = makeRepository();
        ASSERT_TRUE(repository);
        m_window.setRepository(repository.get(), c.isMain);
        EXPECT_EQ(m_window.state(), State::checking);
        ASSERT_TRUE(QTest::qWaitFor([&] { return m_window.state() != State::checking; }, 20000));
        EXPECT_EQ(m_window.state(), State::reportingErrors);
        EXPECT_EQ(m_window.errorMessage(), c.message);
        EXPECT_FALSE(m_window.findChild<QAbstractButton*>("reloadAllProfilesButton")->isEnabled());
    }
}

TEST_F(ManifestUpdatesWindowTest, ARunningCheckShowsProgressAndCanBeCancelled) {
    m_server.stall(indexPath());
    auto repository = makeRepository();
    m_window.setRepository(repository.get(), false);
    EXPECT_EQ(m_window.state(), State::checking);
    EXPECT_TRUE(m_window.findChild<QProgressBar*>("checkProgress")->isVisible());
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_server.requestedPaths().contains(indexPath()); }, 20000));
    QTest::mouseClick(m_window.findChild<QAbstractButton*>("cancelCheckButton"), Qt::LeftButton);
    EXPECT_FALSE(repository->status().isCheckingForUpdates());
    EXPECT_EQ(m_window.state(), State::reportingNoUpdates);

    // The commit log opens in the browser.
    OpenedUrls browser;
    QDesktopServices::setUrlHandler("https", &browser, "open");
    m_window.findChild<QAbstractButton*>("commitLogButton")->click();
    QDesktopServices::unsetUrlHandler("https");
    EXPECT_EQ(browser.urls, QList<QUrl>{QUrl("https://github.com/owner/repo/commits/master")});

    // The repository goes away under the window, as a reload replaces it.
    repository.reset();
    m_window.showStoredResults({item("com.example.a", 10.0)});
    EXPECT_EQ(m_window.state(), State::reportingUpdates);
}

TEST_F(ManifestUpdatesWindowTest, LastResultsListOnlyWhatWasNotSeenAndRememberTheNewest) {
    m_defaults.set(DefaultsKey::lastShownOnlineManifestsUpdateModificationDate, plist::Date{150.0});
    const QList<UpdateResultsItem> items{
        item("com.example.old", 100.0), item("com.example.new", 200.0),
        item("com.example.undated", std::nullopt),
        item("com.example.gone", 300.0, UpdateResultsItem::UpdateStatuses::removed)};
    m_window.setShowingLastResults(true);
    m_window.showStoredResults(items);
    EXPECT_EQ(m_window.state(), State::reportingUpdates);
    // Newest first by the file dates, which run the other way in these items.
    EXPECT_EQ(m_window.listedDomains(),
              (QStringList{"com.example.new", "com.example.gone", "com.example.undated"}));
    m_window.setDateDisplayOption(ManifestUpdatesWindow::DateDisplayOption::manifestModification);
    EXPECT_EQ(m_window.listedDomains(),
              (QStringList{"com.example.gone", "com.example.new", "com.example.undated"}));
    EXPECT_EQ(m_defaults.date(DefaultsKey::lastShownOnlineManifestsUpdateModificationDate),
              plist::Date{300.0});

    m_window.setShowingLastResults(false);
    EXPECT_EQ(m_window.listedDomains().size(), items.size());
    m_window.showStoredResults({});
    EXPECT_EQ(m_window.state(), State::reportingNoUpdates);
}

#include "ManifestUpdatesWindowTest.moc"
