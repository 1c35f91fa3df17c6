#include "ProfileToolTest.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using quorlin::test::ProfileToolTest;
using quorlin::test::ToolRun;

namespace {

class DomainShowCommandTest : public ProfileToolTest {
protected:
    static QJsonObject keyNamed(const QJsonArray& keys, const QString& name) {
        for (const QJsonValue& key : keys) {
            if (key.toObject()["name"].toString() == name)
                return key.toObject();
        }
        ADD_FAILURE() << "no key " << name.toStdString();
        return {};
    }
};

} // namespace

TEST_F(DomainShowCommandTest, JsonNestsSubkeysWithTheirPlatformsAndVersions) {
    const ToolRun shown = run({"domains", "show", "--json", "com.quorlin.test.relay"});
    ASSERT_EQ(shown.exitCode, 0) << shown.error.toStdString();
    const QJsonObject domain = QJsonDocument::fromJson(shown.output).object();
    EXPECT_EQ(domain["domain"].toString(), "com.quorlin.test.relay");
    EXPECT_EQ(domain["title"].toString(), "Relay");
    const QJsonArray keys = domain["keys"].toArray();
    EXPECT_EQ(keys.size(), 9);

    const QJsonObject host = keyNamed(keys, "Host");
    EXPECT_EQ(host["type"].toString(), "string");
    EXPECT_TRUE(host["required"].toBool());
    const QJsonObject handoff = keyNamed(keys, "Handoff");
    EXPECT_EQ(handoff["platforms"].toArray(),
              (QJsonArray{QJsonObject{{"platform", "iOS"}, {"introduced", "17.0"}}}));
    const QJsonObject user = keyNamed(keyNamed(keys, "Account")["subkeys"].toArray(), "User");
    EXPECT_EQ(user["type"].toString(), "string");
    EXPECT_EQ(user["platforms"].toArray().size(), 2) << "a subkey inherits its parent's platforms";
}
