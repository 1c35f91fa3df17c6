#pragma once

#include "documents/ProfileDocument.h"
#include "model/ProfileEnvironment.h"
#include "plist/DefaultsKey.h"
#include "plist/UserDefaults.h"
#include "schema/SchemaTrees.h"
#include "shell/FactoryDefaults.h"
#include "shell/IsolatedHome.h"
#include "shell/ProcessRestarter.h"
#include "supply/PFMDomainManager.h"
#include "supply/SupplyFixtures.h"
#include "support/LocalHttpServer.h"
#include "ui/DocumentReloader.h"
#include "ui/NoticePresenter.h"

#include <QAbstractButton>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace quorlin::test {

// Answers notices in place of a person: it keeps each one with its reply
// handler until the test answers.
class RecordingNoticePresenter : public NoticePresenter {
public:
    struct Presented {
        ApplicationNotice notice;
        ReplyHandler reply;
        bool answered = false;
    };

    void present(QWidget*, const ApplicationNotice& notice, ReplyHandler reply) override {
        presented.push_back({notice, std::move(reply)});
    }
    // The last notice that waits for an answer; null for none.
    Presented* waiting() {
        for (auto it = presented.rbegin(); it != presented.rend(); ++it) {
            if (!it->answered)
                return &*it;
        }
        return nullptr;
    }
    void answer(int tag, bool suppress = false) {
        Presented* notice = waiting();
        ASSERT_TRUE(notice) << "no notice waits";
        notice->answered = true;
        notice->reply({tag, suppress});
    }
    QStringList texts() const {
        QStringList texts;
        for (const auto& shown : presented)
            texts << shown.notice.informativeText;
        return texts;
    }

    std::vector<Presented> presented;
};

class RecordingRestarter : public ProcessRestarter {
public:
    void restart() override { ++restarts; }
    int restarts = 0;
};

// Open documents as the document controller keeps them: real profile
// documents on the domains in force when each was made.
class ProfileDocumentShelf : public DocumentReloader {
public:
    ProfileDocumentShelf(PFMDomainManager& manager, UserDefaults& defaults)
        : m_manager(manager)
        , m_defaults(defaults) {}

    ProfileDocument& open() {
        auto document = std::make_unique<ProfileDocument>(
            m_manager.domains(), ProfileEnvironment::makeFromDefaults(m_defaults), m_defaults);
        EXPECT_TRUE(document->makeWindowControllers());
        documents.push_back(std::move(document));
        return *documents.back();
    }
    int openProfileDocumentCount() const override { return int(documents.size()); }
    void reloadAllDocuments() override {
        const auto count = documents.size();
        documents.clear();
        for (std::size_t index = 0; index < count; ++index)
            open();
        ++reloads;
    }
    bool isReloading() const override { return false; }
    void closeAllDocuments(std::function<void(bool allClosed)> done) override {
        if (!keepOpen)
            documents.clear();
        done(!keepOpen);
    }

    std::vector<std::unique_ptr<ProfileDocument>> documents;
    bool keepOpen = false;
    int reloads = 0;

private:
    PFMDomainManager& m_manager;
    UserDefaults& m_defaults;
};

// A home, settings on the bundled manifests of the supply fixture, and an
// online repository in GitHub's raw layout served on the loopback interface.
class RepositoryUiTest : public ::testing::Test {
protected:
    static inline const QString address = QStringLiteral("https://github.com/owner/repo");
    static inline const QString branch = QStringLiteral("master");

    void SetUp() override {
        ASSERT_TRUE(m_home.isValid() && m_folder.isValid() && m_served.isValid());
        ASSERT_TRUE(copyFolder(supplyDataPath("repository"), m_resources.manifestsDirectory()));
        ASSERT_TRUE(QDir().mkpath(m_resources.manifestSupportDirectory()));
        ASSERT_TRUE(writeBytes(m_resources.imagePath("domainIconDefault"), pngBytes(Qt::gray)));
        m_defaults.registerDefaults(FactoryDefaults::registeredDefaults());
        m_defaults.set(DefaultsKey::manifestRepositoryType, DefaultsValue::repositoryTypeBundled);
        serve({"", "com.example.online", "com.example.mail"});
        ASSERT_TRUE(m_server.listen());
        qputenv("QUORLIN_RAW_CONTENT_URL", m_server.baseUrl().toString().toUtf8());
    }
    void TearDown() override { qputenv("QUORLIN_RAW_CONTENT_URL", "http://127.0.0.1:9/"); }

    // The served repository: one manifest per domain, titled "Online <domain>".
    void serve(const QStringList& domains) {
        const QString raw = m_served.filePath("owner/repo/master/");
        plist::Dictionary entries;
        for (const QString& domain : domains) {
            const QString path =
                "Manifests/ManifestsApple/" + (domain.isEmpty() ? "General" : domain) + ".plist";
            ASSERT_TRUE(
                writeManifest(raw + path, manifestTree(domain, {}, {{"pfm_title", "Online " + domain}})));
            entries.insert(domain.isEmpty() ? QStringLiteral("General") : domain,
                           plist::Dictionary{{"path", path}, {"modified", plist::Date{1000.0}}});
        }
        ASSERT_TRUE(writeManifest(raw + "Manifests/index", plist::Dictionary{{"ManifestsApple", entries}}));
    }
    std::unique_ptr<PFMDomainManager> makeManager() {
        return std::make_unique<PFMDomainManager>(m_defaults, m_resources);
    }
    QString indexPath() const { return QStringLiteral("/owner/repo/master/Manifests/index"); }

    template <typename Widget>
    static Widget* child(QWidget* parent, const QString& name) {
        auto* widget = parent->findChild<Widget*>(name);
        EXPECT_TRUE(widget) << name.toStdString();
        return widget;
    }
    // A radio button answers a mouse only on its label, so the button is clicked as a key press would.
    static void click(QWidget* parent, const QString& name) {
        if (auto* button = child<QAbstractButton>(parent, name))
            button->click();
    }
    static void type(QWidget* parent, const QString& name, const QString& text) {
        if (auto* edit = child<QLineEdit>(parent, name)) {
            edit->selectAll();
            QTest::keyClicks(edit, text);
        }
    }

    IsolatedHome m_home;
    QTemporaryDir m_folder;
    QTemporaryDir m_served;
    ResourceFolder m_resources{m_folder.filePath("resources")};
    UserDefaults m_defaults{m_folder.filePath("defaults.plist")};
    LocalHttpServer m_server{m_served.path()};
    RecordingNoticePresenter m_notices;
    RecordingRestarter m_restarter;
};

} // namespace quorlin::test
