#include "apptools/iTunesQueryHelper.h"
#include "apptools/AppSearchResults.h"
#include "apptools/iTunesQueryHelperAppObject.h"
#include "support/LocalHttpServer.h"
#include "support/TestSupport.h"

#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

using namespace quorlin::apptools;
using quorlin::test::LocalHttpServer;
using ResultType = AppSearchResult::ResultType;

namespace {

const QByteArray kJavaScript = "text/javascript; charset=utf-8";

// What the service answers for "safari": a store app with a system app's
// identifier, one of its own twice, and a result without an identifier.
const QByteArray kSafariResults =
    quorlin::test::readFile(quorlin::test::testDataPath(QStringLiteral("apptools/safari-search.json")));

QString pathOf(const QUrl& url) {
    return url.path() + u'?' + url.query(QUrl::FullyDecoded);
}

class iTunesQueryHelperTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_server.listen());
        m_helper.setBaseUrl(m_server.baseUrl());
        m_helper.setTransferTimeout(2000);
    }

    void serve(const QUrl& url, const QByteArray& body, const QByteArray& type = kJavaScript) {
        m_server.setBody(pathOf(url), body);
        m_server.setContentType(pathOf(url), type);
    }

    std::optional<QList<AppSearchResult>> search(const QString& term) {
        bool done = false;
        std::optional<QList<AppSearchResult>> rows;
        m_helper.search(term, [&](auto found) {
            rows = std::move(found);
            done = true;
        });
        EXPECT_TRUE(QTest::qWaitFor([&done] { return done; }, 10000));
        return rows;
    }

    QTemporaryDir m_folder;
    LocalHttpServer m_server{m_folder.path()};
    iTunesQueryHelper m_helper;
};

} // namespace

TEST_F(iTunesQueryHelperTest, AsksTheServiceAtItsAddressWithTheQueryInOrder) {
    EXPECT_EQ(iTunesQueryHelper::defaultBaseUrl(), QUrl(QStringLiteral("http://127.0.0.1:9/")))
        << "the test environment closes the public address";
    const QUrl search = m_helper.searchUrl(QStringLiteral("pages & numbers"));
    EXPECT_EQ(search.path(), QStringLiteral("/search"));
    EXPECT_EQ(
        search.query(QUrl::FullyDecoded),
        QStringLiteral("term=pages & numbers&entity=software,iPadSoftware,macSoftware&limit=1000&lang=en"));
    EXPECT_EQ(
        pathOf(m_helper.lookupUrl(QStringLiteral("com.apple.Pages"))),
        QStringLiteral(
            "/lookup?bundleId=com.apple.Pages&entity=software,iPadSoftware,macSoftware&limit=1&lang=en"));
}

TEST_F(iTunesQueryHelperTest, SearchPutsSystemAppsFirstAndDropsRepeats) {
    serve(m_helper.searchUrl(QStringLiteral("safari")), kSafariResults);
    const auto rows = search(QStringLiteral("safari"));
    ASSERT_TRUE(rows);
    const QList<AppSearchResult> expected{
        {"Safari", "com.apple.mobilesafari", ResultType::systemApp, std::nullopt},
        {"Safari Reader", "com.example.reader", ResultType::storeApp, QUrl("https://example.com/r.png")},
        {"safari", "safari", ResultType::bundleId, std::nullopt},
    };
    EXPECT_EQ(*rows, expected);
}

TEST_F(iTunesQueryHelperTest, FailingOrSlowServiceGivesNoStoreRows) {
    m_server.stall(pathOf(m_helper.searchUrl(QStringLiteral("slow"))));
    EXPECT_EQ(search(QStringLiteral("slow")), std::nullopt);
    m_server.setStatus(pathOf(m_helper.searchUrl(QStringLiteral("broken"))), 500);
    EXPECT_EQ(search(QStringLiteral("broken")), std::nullopt);
    m_server.close();
    EXPECT_EQ(search(QStringLiteral("gone")), std::nullopt);
}

TEST(AppSearchResultsTest, UsesOnlyResponsesThatFollowTheServicesRules) {
    const auto rows = [](int status, std::optional<QByteArray> type, QByteArray body,
                         const char* term = "notes") {
        return AppSearchResults::build(QString::fromLatin1(term),
                                       SearchResponse{status, std::move(type), std::move(body)});
    };
    const QByteArray oneResult = R"({"results": [{"trackName": "Bear", "bundleId": "net.shinyfrog.bear"}]})";
    const AppSearchResult notes{"Notes", "com.apple.mobilenotes", ResultType::systemApp, std::nullopt};
    const AppSearchResult bear{"Bear", "net.shinyfrog.bear", ResultType::storeApp, std::nullopt};
    const AppSearchResult typed{"notes", "notes", ResultType::bundleId, std::nullopt};

    EXPECT_EQ(rows(200, kJavaScript, oneResult), (QList<AppSearchResult>{notes, bear, typed}));
    EXPECT_EQ(rows(200, std::nullopt, oneResult), (QList<AppSearchResult>{notes, bear, typed}))
        << "no type at all";
    EXPECT_EQ(rows(200, "application/json", oneResult), std::nullopt) << "only the one type is taken";
    EXPECT_EQ(rows(404, kJavaScript, oneResult), std::nullopt);
    EXPECT_EQ(rows(200, kJavaScript, {}), std::nullopt);
    EXPECT_EQ(rows(200, kJavaScript, "{\"results\": [{"), (QList<AppSearchResult>{notes, typed}))
        << "malformed JSON";
    EXPECT_EQ(rows(200, kJavaScript, oneResult, "net.shinyfrog.bear"), QList<AppSearchResult>{bear})
        << "a store app with exactly the typed identifier";
    EXPECT_EQ(rows(200, kJavaScript, oneResult, ""), QList<AppSearchResult>{}) << "an empty search";
}

TEST_F(iTunesQueryHelperTest, AppObjectIsSharedAndLooksUpOnceForItsWatchers) {
    const QUrl icon = m_server.baseUrl().resolved(QUrl(QStringLiteral("icons/bear.png")));
    serve(m_helper.lookupUrl(QStringLiteral("net.shinyfrog.bear")),
          R"({"results": [{"trackName": "Bear", "artworkUrl60": ")" + icon.toEncoded() + R"("}]})");
    m_server.setBody(QStringLiteral("/icons/bear.png"), "PNG bytes");

    iTunesQueryHelperAppObject* first = m_helper.appObject(QStringLiteral("net.shinyfrog.bear"));
    iTunesQueryHelperAppObject* second = m_helper.appObject(QStringLiteral("net.shinyfrog.bear"));
    ASSERT_EQ(first, second);
    EXPECT_EQ(first->appDisplayName(), QStringLiteral("net.shinyfrog.bear"));
    first->addInfoObserver();
    second->addInfoObserver();
    first->addIconObserver();
    ASSERT_TRUE(QTest::qWaitFor([first] { return first->iconImage().has_value(); }, 10000));
    EXPECT_EQ(first->appDisplayName(), QStringLiteral("Bear"));
    EXPECT_EQ(*first->iconImage(), QByteArray("PNG bytes"));
    EXPECT_EQ(m_server.requestedPaths().size(), 2) << "one lookup, one icon";
}

TEST_F(iTunesQueryHelperTest, UnknownIdentifierIsLookedUpTwiceAndNoMore) {
    serve(m_helper.lookupUrl(QStringLiteral("com.example.unknown")), R"({"resultCount": 0, "results": []})");
    iTunesQueryHelperAppObject* object = m_helper.appObject(QStringLiteral("com.example.unknown"));
    for (int watch = 0; watch < 3; ++watch) {
        object->addInfoObserver();
        QTest::qWait(0);
        EXPECT_TRUE(QTest::qWaitFor(
            [&] { return m_server.requestedPaths().size() >= std::min(watch + 1, 2); }, 10000));
        QTest::qWait(50);
        object->removeInfoObserver();
    }
    EXPECT_EQ(m_server.requestedPaths().size(), 2);
    EXPECT_EQ(object->infoDownloadTriesCount(), 2);
    EXPECT_EQ(object->appName(), std::nullopt);
}
