#include "workspace/PayloadIconTable.h"
#include "WorkspaceTestSupport.h"

#include <QDir>
#include <QFileInfo>
#include <QSet>

#include <gtest/gtest.h>

namespace quorlin {
namespace {

// The first rule whose pattern the domain holds wins; the rest fall back to the gear.
TEST(PayloadIcons, CommonPayloadsHaveGlyphsOfTheirOwnInTheirFamily) {
    struct Case {
        const char* domain;
        const char* family;
        const char* glyph;
    };
    const Case cases[] = {
        {"com.apple.wifi.managed", "network", "wifi"},
        {"com.apple.proxy.http.global", "network", "proxy"},
        {"com.apple.security.scep", "certificates", "request"},
        {"com.apple.security.firewall", "security", "firewall"},
        {"com.apple.familycontrols.timelimits.v2", "restrictions", "hourglass"},
        {"com.apple.ews.account", "accounts", "mail"},
        {"com.apple.loginwindow", "system", "login"},
        {"org.example.unlisted", "system", "gear"},
    };
    for (const Case& test : cases) {
        const auto icon = PayloadIconTable::iconForDomain(QString::fromLatin1(test.domain));
        EXPECT_EQ(icon.family, QString::fromLatin1(test.family)) << test.domain;
        EXPECT_EQ(icon.glyph, QString::fromLatin1(test.glyph)) << test.domain;
    }
    EXPECT_EQ(PayloadIconTable::unfamiliarIcon().name(), QStringLiteral("payload-unfamiliar-question"));
}

// The generator's output is committed: every icon the table gives is there,
// light and dark, scalable and at each scale the side-bar draws.
TEST(PayloadIcons, EveryIconTheTableGivesIsShipped) {
    const QDir folder(QStringLiteral(QUORLIN_TEST_DATA_DIR "/../../resources/Images/Payloads"));
    const auto icons = PayloadIconTable::allIcons();
    QSet<QString> names;
    for (const auto& icon : icons) {
        names.insert(icon.name());
        for (const QString& variant : {icon.name(), icon.name() + QStringLiteral("-dark")}) {
            EXPECT_TRUE(QFileInfo::exists(folder.filePath(variant + QStringLiteral(".svg"))))
                << variant.toStdString();
            for (const int size : {28, 56, 84})
                EXPECT_TRUE(
                    QFileInfo::exists(folder.filePath(QStringLiteral("%1-%2.png").arg(variant).arg(size))))
                    << variant.toStdString() << size;
        }
    }
    EXPECT_EQ(names.size(), icons.size());
    // Nothing stale lies beside them: two sets of four files per icon.
    EXPECT_EQ(folder.entryList(QDir::Files).size(), icons.size() * 8);
}

} // namespace
} // namespace quorlin
