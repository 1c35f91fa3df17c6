#include "ProfileToolTest.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using quorlin::test::lines;
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

TEST_F(DomainShowCommandTest, ListsTheKeysNestedWithTypesAndWhereTheyExist) {
    const ToolRun shown = run({"domains", "show", "com.quorlin.test.relay"});
    ASSERT_EQ(shown.exitCode, 0) << shown.error.toStdString();
    const QString domainPlatforms = QStringLiteral("iOS introduced 14.0, macOS introduced 11.0");
    EXPECT_EQ(lines(shown.output), (QStringList{
                                       "com.quorlin.test.relay\tRelay\t" + domainPlatforms,
                                       "  PayloadType\tstring\trequired\t" + domainPlatforms,
                                       "  PayloadVersion\tinteger\trequired\t" + domainPlatforms,
                                       "  PayloadUUID\tstring\trequired\t" + domainPlatforms,
                                       "  PayloadIdentifier\tstring\trequired\t" + domainPlatforms,
                                       "  PayloadDisplayName\tstring\trequired\t" + domainPlatforms,
                                       "  Host\tstring\trequired\t" + domainPlatforms,
                                       "  Port\tinteger\t-\t" + domainPlatforms,
                                       // Its own versions win, and macOS is taken away.
                                       "  Handoff\tboolean\t-\tiOS introduced 17.0",
                                       "  Account\tdictionary\t-\t" + domainPlatforms,
                                       "    User\tstring\t-\t" + domainPlatforms,
                                       "    Token\tdata\t-\t" + domainPlatforms,
                                   }));

    const ToolRun notes = run({"domains", "show", "com.quorlin.test.notes"});
    ASSERT_EQ(notes.exitCode, 0);
    EXPECT_EQ(lines(notes.output).last(), "  Text\tstring\t-\tmacOS");
}

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

TEST_F(DomainShowCommandTest, ListIsTheDefault) {
    const ToolRun listed = run({"domains", "list"});
    EXPECT_EQ(listed.exitCode, 0);
    EXPECT_EQ(listed.output, run({"domains"}).output);
    EXPECT_EQ(lines(listed.output).size(), 4) << "three domains and the count of files without one";
}
