#include "ui/PreferencesWindow.h"

#include "RepositoryUiFixtures.h"
#include "plist/XmlWriter.h"
#include "supply/RepositoryStorePaths.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QTabWidget>
#include <QTest>

using namespace quorlin;
using namespace quorlin::test;

namespace {

class PreferencesWindowTest : public RepositoryUiTest {
protected:
    void SetUp() override {
        RepositoryUiTest::SetUp();
        m_window = std::make_unique<PreferencesWindow>(
            m_defaults, PreferencesWindow::Services{m_notices, m_restarter,
                                                    [this](std::function<void(bool)> done) {
                                                        ++m_closeRequests;
                                                        done(m_documentsClose);
                                                    },
                                                    std::nullopt});
        m_window->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(m_window.get()));
    }

    template <typename Widget>
    Widget* find(const QString& name) {
        auto* widget = m_window->findChild<Widget*>(name);
        EXPECT_TRUE(widget) << name.toStdString();
        return widget;
    }
    // A radio button answers a mouse only on its label, so the button is clicked as a key press would.
    void click(const QString& name) { find<QAbstractButton>(name)->click(); }
    void type(const QString& field, const QString& text) {
        auto* edit = find<QLineEdit>(field);
        edit->selectAll();
        QTest::keyClicks(edit, text);
    }
    void enterOnline(const QString& enteredAddress, const QString& enteredBranch) {
        m_window->selectPane(PreferencesWindow::Pane::manifests);
        click("onlineTypeButton");
        type("onlineAddressTextField", enteredAddress);
        type("onlineBranchTextField", enteredBranch);
    }

    std::unique_ptr<PreferencesWindow> m_window;
    int m_closeRequests = 0;
    bool m_documentsClose = true;
};

} // namespace

TEST_F(PreferencesWindowTest, EachDefaultsControlStoresItsDefaultAtOnce) {
    m_window->setSigningIdentityNames({"Alice", "Bob"});
    struct Field {
        QString name, key, text;
    };
    for (const Field& field :
         {Field{"organizationNameTextField", DefaultsKey::preferencesDefaultsOrganizationName, "Acme"},
          Field{"consentTextField", DefaultsKey::preferencesDefaultsConsentText, "Agree"},
          Field{"identifierPrefixTextField", DefaultsKey::identifierPrefix, "com.acme"}}) {
        type(field.name, field.text);
        EXPECT_EQ(UserDefaults(m_defaults.filePath()).string(field.key), field.text)
            << field.key.toStdString();
        find<QLineEdit>(field.name)->selectAll();
        QTest::keyClick(find<QLineEdit>(field.name), Qt::Key_Delete);
        EXPECT_FALSE(m_defaults.hasPersistentValue(field.key)) << "an empty text counts as absent";
    }

    auto* update = find<QCheckBox>("automaticDefaultsUpdateCheckbox");
    EXPECT_TRUE(update->isChecked()) << "the registered default";
    update->click();
    EXPECT_EQ(
        UserDefaults(m_defaults.filePath()).boolean(DefaultsKey::preferencesDefaultsAutomaticallyUpdate),
        false);

    auto* identity = find<QComboBox>("defaultSigningIdentityPopUpButton");
    ASSERT_EQ(identity->count(), 3);
    identity->setCurrentIndex(2);
    Q_EMIT identity->activated(2);
    EXPECT_EQ(UserDefaults(m_defaults.filePath()).string(DefaultsKey::preferencesDefaultsSigningIdentity),
              "Bob");
    m_window->setSigningIdentityNames({"Alice"});
    EXPECT_EQ(identity->currentText(), "Bob") << "a stored identity that is gone stays chosen";
}

TEST_F(PreferencesWindowTest, OnlineSettingsAreStoredOnlyOnceTheServerAnswers) {
    QSignalSpy changes(m_window.get(), &PreferencesWindow::manifestRepositoryDidChange);

    // Wrong in form: refused with their words before any request.
    struct Invalid {
        QString address, branch, text;
    };
    for (const Invalid& entered :
         {Invalid{"https://example.com/owner/repo", "master",
                  "The set online manifest repository address is invalid."},
          Invalid{address, "bad..branch", "The set online manifest repository branch name is invalid."},
          Invalid{"https://github.com/owner", "bad..branch",
                  "Both the online manifest repository address and branch name set are invalid."}}) {
        enterOnline(entered.address, entered.branch);
        click("verifyButton");
        ASSERT_TRUE(m_notices.waiting());
        EXPECT_EQ(m_notices.waiting()->notice.title, "Online Manifest Repository Settings Invalid");
        EXPECT_EQ(m_notices.waiting()->notice.informativeText, entered.text);
        m_notices.answer(ApplicationNotice::dismiss);
    }
    EXPECT_TRUE(m_server.requestedPaths().isEmpty());

    // A branch the server doesn't have fails with the words of the check.
    enterOnline(address, "other");
    auto* compatibility = find<QCheckBox>("maximizeCompatibilityCheckbox");
    const bool compatible = compatibility->isChecked();
    compatibility->click();
    EXPECT_FALSE(m_defaults.hasPersistentValue(DefaultsKey::maximizeNonStandardManifestCompatibility));
    click("verifyButton");
    EXPECT_TRUE(m_window->isValidatingRepositorySettings());
    EXPECT_TRUE(find<QProgressBar>("verificationProgress")->isVisible());
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_notices.waiting() != nullptr; }, 20000));
    EXPECT_EQ(m_notices.waiting()->notice.informativeText,
              "The online manifest repository settings could not be verified with GitHub.");
    EXPECT_FALSE(find<QProgressBar>("verificationProgress")->isVisible());
    EXPECT_EQ(m_defaults.string(DefaultsKey::manifestRepositoryType), DefaultsValue::repositoryTypeBundled);
    // Reverting brings back the stored settings.
    m_notices.answer(ApplicationNotice::revert);
    EXPECT_EQ(m_window->viewManifestRepositorySettings(), ManifestRepositorySettings::read(m_defaults));
    EXPECT_EQ(compatibility->isChecked(), compatible);
    EXPECT_EQ(changes.count(), 0);

    // The right branch verifies and is stored.
    enterOnline(address, branch);
    compatibility->click();
    m_server.clearRequestedPaths();
    click("verifyButton");
    ASSERT_TRUE(QTest::qWaitFor([&] { return changes.count() == 1; }, 20000));
    EXPECT_TRUE(m_server.requestedPaths().contains(indexPath()));
    EXPECT_FALSE(m_window->isValidatingRepositorySettings());
    const UserDefaults stored(m_defaults.filePath());
    EXPECT_EQ(stored.string(DefaultsKey::manifestRepositoryType), "online");
    EXPECT_EQ(stored.string(DefaultsKey::onlineManifestRepositoryAddress), address);
    EXPECT_EQ(stored.string(DefaultsKey::onlineManifestRepositoryBranchName), branch);
    EXPECT_EQ(stored.boolean(DefaultsKey::maximizeNonStandardManifestCompatibility), !compatible);

    // Unchanged settings are not verified again.
    m_server.clearRequestedPaths();
    bool left = false;
    m_window->requestLeave([&](bool mayLeave) { left = mayLeave; });
    EXPECT_TRUE(left);
    EXPECT_TRUE(m_server.requestedPaths().isEmpty());
}

TEST_F(PreferencesWindowTest, AVerificationCanBeCancelledAndAnUnreachableServerFailsIt) {
    m_server.stall(indexPath());
    enterOnline(address, branch);
    bool answered = false;
    bool mayLeave = true;
    m_window->requestLeave([&](bool may) {
        answered = true;
        mayLeave = may;
    });
    EXPECT_FALSE(answered) << "the answer waits for the server";
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_server.requestedPaths().contains(indexPath()); }, 20000));
    click("cancelVerificationButton");
    EXPECT_TRUE(answered);
    EXPECT_FALSE(mayLeave);
    EXPECT_FALSE(m_window->isValidatingRepositorySettings());
    EXPECT_EQ(m_defaults.string(DefaultsKey::manifestRepositoryType), DefaultsValue::repositoryTypeBundled);

    m_server.close();
    qputenv("QUORLIN_RAW_CONTENT_URL", "http://127.0.0.1:9/");
    click("verifyButton");
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_notices.waiting() != nullptr; }, 20000));
    EXPECT_EQ(m_notices.waiting()->notice.informativeText,
              "The online manifest repository settings could not be verified with GitHub.");
    // Trying again asks the server again.
    m_notices.answer(ApplicationNotice::tryAgain);
    EXPECT_TRUE(m_window->isValidatingRepositorySettings());
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_notices.waiting() != nullptr; }, 20000));
    m_notices.answer(ApplicationNotice::change);
    EXPECT_EQ(m_window->viewManifestRepositorySettings().onlineBranch, branch)
        << "the entries stay to be changed";
    EXPECT_EQ(m_defaults.string(DefaultsKey::manifestRepositoryType), DefaultsValue::repositoryTypeBundled);
}

TEST_F(PreferencesWindowTest, ALocalFolderMustHoldTheGeneralManifestAndALargeOneIsConfirmed) {
    QSignalSpy changes(m_window.get(), &PreferencesWindow::manifestRepositoryDidChange);
    const QString folder = m_folder.filePath("local");
    ASSERT_TRUE(writeManifest(folder + "/a.plist", manifestTree("com.example.a", {})));
    m_window->setFolderChooser([&](QWidget*, const QString&) { return folder; });
    m_window->selectPane(PreferencesWindow::Pane::manifests);
    click("localTypeButton");
    click("localFolderChooseButton");
    EXPECT_EQ(find<QLabel>("localFolder")->text(), folder);

    // Leaving the tab verifies, and a refusal keeps it open.
    find<QTabWidget>(QString())->setCurrentIndex(int(PreferencesWindow::Pane::maintenance));
    EXPECT_EQ(m_window->findChild<QTabWidget*>()->currentIndex(), int(PreferencesWindow::Pane::manifests));
    ASSERT_TRUE(m_notices.waiting());
    EXPECT_EQ(m_notices.waiting()->notice.title, "Local Manifest Repository Settings Invalid");
    EXPECT_EQ(m_notices.waiting()->notice.informativeText,
              "A valid preference manifest repository could not be found in the provided folder.");
    m_notices.answer(ApplicationNotice::dismiss);

    ASSERT_TRUE(writeManifest(folder + "/General.plist", manifestTree("", {})));
    const QByteArray other = *plist::XmlWriter::write(manifestTree("com.example.other", {}));
    for (int index = 0; index < 2000; ++index)
        ASSERT_TRUE(writeBytes(QStringLiteral("%1/many/%2.plist").arg(folder).arg(index), other));
    click("verifyButton");
    ASSERT_TRUE(m_notices.waiting());
    EXPECT_EQ(
        m_notices.waiting()->notice.informativeText,
        "The provided folder contains over 2000 Plist files and scanning of them all may take some time."
        "\n\nAre you sure that you want to use it as a local manifest repository?");
    m_notices.answer(ApplicationNotice::change);
    EXPECT_EQ(changes.count(), 0);
    click("verifyButton");
    m_notices.answer(ApplicationNotice::accept);
    EXPECT_EQ(changes.count(), 1);
    EXPECT_EQ(ManifestRepositorySettings::read(UserDefaults(m_defaults.filePath())).localRepositoryPath,
              folder);
}

TEST_F(PreferencesWindowTest, FactoryResetAsksThenClosesDocumentsRemovesEverythingAndRestarts) {
    m_defaults.set(DefaultsKey::identifierPrefix, "com.acme");
    ASSERT_TRUE(QDir().mkpath(RepositoryStorePaths::storeRoot() + "/github"));
    m_window->selectPane(PreferencesWindow::Pane::maintenance);

    click("resetToFactorySettingsButton");
    ASSERT_TRUE(m_notices.waiting());
    EXPECT_TRUE(m_notices.waiting()->notice.informativeText.startsWith(
        "Resetting will close all profiles, remove all user-set preferences, clear downloaded manifests, and "
        "restart the app."));
    EXPECT_TRUE(m_notices.waiting()->notice.informativeText.endsWith(
        "reset Quorlin Profile Editor to its factory state now?"));
    m_notices.answer(ApplicationNotice::dismiss);
    EXPECT_EQ(m_closeRequests, 0);

    m_documentsClose = false;
    click("resetToFactorySettingsButton");
    m_notices.answer(ApplicationNotice::accept);
    EXPECT_EQ(m_closeRequests, 1);
    EXPECT_EQ(m_restarter.restarts, 0) << "a document the user kept open stops the reset";
    EXPECT_TRUE(QFileInfo::exists(m_defaults.filePath()));

    m_documentsClose = true;
    click("resetToFactorySettingsButton");
    m_notices.answer(ApplicationNotice::accept);
    EXPECT_EQ(m_restarter.restarts, 1);
    EXPECT_FALSE(QFileInfo::exists(m_defaults.filePath()));
    EXPECT_FALSE(QFileInfo::exists(RepositoryStorePaths::storeRoot()));
}
