#include "RecordingAnalyticsSink.h"

#include "plist/DefaultsKey.h"
#include "plist/UserDefaults.h"
#include "shell/AnalyticsHelper.h"
#include "shell/AnalyticsIntegration.h"
#include "shell/AuditLogAnalyticsSink.h"
#include "support/TestSupport.h"

#include <QDateTime>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>

using namespace quorlin;

namespace {

const QString kWiFi = QStringLiteral("com.apple.wifi.managed");
const QString kVpn = QStringLiteral("com.apple.vpn.managed");

class AnalyticsHelperTest : public ::testing::Test {
protected:
    AnalyticsHelperTest() { m_analytics.setup(AnalyticsIntegration::applicationSecret()); }

    AnalyticsHelper helper(QStringList known) {
        return AnalyticsHelper(m_analytics, [this, known] {
            ++m_providerCalls;
            return known;
        });
    }
    QStringList sentDomains() const {
        QStringList domains;
        for (const auto& event : m_sink->events)
            domains << event.properties.value(QStringLiteral("DomainString"));
        return domains;
    }

    std::shared_ptr<test::RecordingAnalyticsSink> m_sink = std::make_shared<test::RecordingAnalyticsSink>();
    AnalyticsIntegration m_analytics{m_sink};
    int m_providerCalls = 0;
};

} // namespace

// Only domains of the bundled manifests, matched exactly, one event each.
TEST_F(AnalyticsHelperTest, ReportsEachPayloadOfABundledDomain) {
    AnalyticsHelper analytics = helper({kWiFi, kVpn});
    analytics.report({"com.customer.secret", kVpn, "COM.APPLE.WIFI.MANAGED", "com.apple.wifi", kVpn},
                     AnalyticsHelper::payloadLoaded);
    EXPECT_EQ(sentDomains(), (QStringList{kVpn, kVpn}));
    for (const auto& event : m_sink->events)
        EXPECT_EQ(event.name, QStringLiteral("Payload loaded"));
    EXPECT_EQ(m_sink->events.first().properties, (AnalyticsSink::Properties{{"DomainString", kVpn}}));

    analytics.report({}, AnalyticsHelper::payloadSaved);
    analytics.report({"com.customer.secret"}, AnalyticsHelper::payloadSaved);
    EXPECT_EQ(m_sink->events.size(), 2);
    analytics.report({kWiFi}, AnalyticsHelper::payloadAdded);
    EXPECT_EQ(m_sink->events.last().name, QStringLiteral("Payload added"));
}

TEST_F(AnalyticsHelperTest, CutsALongDomainTo125Characters) {
    const QString longDomain = QStringLiteral("com.example.") + QString(188, u'x');
    ASSERT_EQ(longDomain.size(), 200);
    const QString exact = QString(125, u'y');
    helper({longDomain, exact}).report({longDomain, exact}, AnalyticsHelper::payloadSaved);
    EXPECT_EQ(sentDomains(), (QStringList{longDomain.left(125), exact}));
}

TEST_F(AnalyticsHelperTest, AsksForTheKnownDomainsOnceAndOnlyWhenFirstNeeded) {
    AnalyticsHelper analytics = helper({kWiFi});
    EXPECT_EQ(m_providerCalls, 0);
    analytics.report({kWiFi}, AnalyticsHelper::payloadAdded);
    analytics.report({kWiFi}, AnalyticsHelper::payloadSaved);
    EXPECT_EQ(m_providerCalls, 1);
    EXPECT_EQ(analytics.nonIdentifiablePayloadDomains(), QStringList{kWiFi});
}

TEST_F(AnalyticsHelperTest, KnownDomainsComeFromThePfmDomainOfEachManifest) {
    const plist::Array manifests{plist::Dictionary{{"pfm_domain", kWiFi}, {"pfm_title", "Wi-Fi"}},
                                 plist::Dictionary{{"pfm_title", "No domain"}},
                                 plist::Dictionary{{"pfm_domain", 7}}, "not a manifest",
                                 plist::Dictionary{{"pfm_domain", kVpn}}};
    EXPECT_EQ(AnalyticsHelper::payloadDomainsOf(manifests), (QStringList{kWiFi, kVpn}));
}

TEST(AnalyticsIntegration, SendsNothingBeforeItIsStarted) {
    auto sink = std::make_shared<test::RecordingAnalyticsSink>();
    AnalyticsIntegration analytics(sink);
    AnalyticsHelper(analytics, [] {
        return QStringList{kWiFi};
    }).report({kWiFi}, AnalyticsHelper::payloadAdded);
    EXPECT_TRUE(sink->events.isEmpty());

    analytics.setup(QStringLiteral("00000000-0000-0000-0000-000000000001"));
    analytics.setup(QStringLiteral("00000000-0000-0000-0000-000000000002"));
    EXPECT_EQ(sink->secrets, QStringList{"00000000-0000-0000-0000-000000000001"});
}

TEST(AuditLogAnalyticsSink, WritesALineForEachEventOnlyWhileTheAdministratorWantsIt) {
    QTemporaryDir folder;
    UserDefaults defaults(folder.filePath(QStringLiteral("defaults.plist")));
    const QString log = folder.filePath(QStringLiteral("data/audit.log"));
    AuditLogAnalyticsSink sink(defaults, log);
    sink.trackEvent(AnalyticsHelper::payloadSaved, {{QStringLiteral("DomainString"), kVpn}});
    EXPECT_FALSE(QFileInfo::exists(log)) << "off unless set";

    defaults.set(DefaultsKey::analyticsAuditLogEnabled, true);
    sink.trackEvent(AnalyticsHelper::payloadLoaded, {{QStringLiteral("DomainString"), kWiFi}});
    sink.trackEvent(AnalyticsHelper::payloadAdded, {{QStringLiteral("DomainString"), kVpn}});
    defaults.set(DefaultsKey::analyticsAuditLogEnabled, false);
    sink.trackEvent(AnalyticsHelper::payloadSaved, {{QStringLiteral("DomainString"), kVpn}});

    const QStringList lines = QString::fromUtf8(test::readFile(log)).split(u'\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 2);
    const QStringList fields = lines.first().split(u'\t');
    ASSERT_EQ(fields.size(), 3);
    EXPECT_TRUE(QDateTime::fromString(fields[0], Qt::ISODate).isValid()) << fields[0].toStdString();
    EXPECT_EQ(fields.mid(1), (QStringList{AnalyticsHelper::payloadLoaded, "DomainString=" + kWiFi}));
    EXPECT_TRUE(lines.last().endsWith(AnalyticsHelper::payloadAdded + "\tDomainString=" + kVpn));
}
