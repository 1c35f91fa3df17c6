#include "supply/NetworkFetch.h"

#include "support/LocalHttpServer.h"

#include <QFile>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

using namespace quorlin;
using quorlin::test::LocalHttpServer;

namespace {

class NetworkFetchTest : public ::testing::Test {
protected:
    void SetUp() override {
        QFile file(m_folder.filePath("file.plist"));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(QByteArray(1000, 'a'));
        file.close();
        ASSERT_TRUE(m_server.listen());
    }

    FetchOutcome get(const QString& path, qint64 maximumSize = 1 << 20) {
        std::optional<FetchOutcome> outcome;
        fetch(m_network, m_server.baseUrl().resolved(QUrl(path)), maximumSize, &m_context,
              [&outcome](FetchOutcome result) { outcome = std::move(result); });
        EXPECT_TRUE(QTest::qWaitFor([&outcome] { return outcome.has_value(); }, 10000));
        return outcome.value_or(FetchOutcome{});
    }

    QTemporaryDir m_folder;
    LocalHttpServer m_server{m_folder.path()};
    QNetworkAccessManager m_network;
    QObject m_context;
};

} // namespace

TEST_F(NetworkFetchTest, GivesTheBodyOfAnAnsweredRequest) {
    const FetchOutcome outcome = get("file.plist");
    EXPECT_TRUE(outcome.isSuccess());
    EXPECT_EQ(outcome.body, QByteArray(1000, 'a'));
}

TEST_F(NetworkFetchTest, TellsStatusesSizesAndAbsentServersApart) {
    const FetchOutcome missing = get("missing.plist");
    EXPECT_EQ(missing.kind, FetchOutcome::Kind::response);
    EXPECT_EQ(missing.httpStatus, 404);
    EXPECT_FALSE(missing.isSuccess());

    EXPECT_EQ(get("file.plist", 999).kind, FetchOutcome::Kind::tooLarge);

    m_server.setBody("/big", QByteArray(4 << 20, 'b'));
    const FetchOutcome big = get("big", 1 << 20);
    EXPECT_EQ(big.kind, FetchOutcome::Kind::tooLarge);
    EXPECT_TRUE(big.body.isEmpty());

    const QUrl address = m_server.baseUrl();
    m_server.close();
    std::optional<FetchOutcome> down;
    fetch(m_network, address.resolved(QUrl("file.plist")), 100, &m_context,
          [&down](FetchOutcome result) { down = std::move(result); });
    ASSERT_TRUE(QTest::qWaitFor([&down] { return down.has_value(); }, 10000));
    EXPECT_EQ(down->kind, FetchOutcome::Kind::transportError);
}

TEST_F(NetworkFetchTest, CancellingEndsQuietly) {
    m_server.stall("/file.plist");
    std::optional<FetchOutcome> outcome;
    QNetworkReply* reply = fetch(m_network, m_server.baseUrl().resolved(QUrl("file.plist")), 100, &m_context,
                                 [&outcome](FetchOutcome result) { outcome = std::move(result); });
    QTest::qWait(50);
    reply->abort();
    ASSERT_TRUE(QTest::qWaitFor([&outcome] { return outcome.has_value(); }, 10000));
    EXPECT_EQ(outcome->kind, FetchOutcome::Kind::cancelled);
}
