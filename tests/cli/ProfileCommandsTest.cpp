#include "ProfileToolTest.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>

#include <functional>

using namespace quorlin;
using quorlin::test::lines;
using quorlin::test::ProfileToolTest;
using quorlin::test::ToolRun;

namespace {

const QString kRelay = QStringLiteral("com.quorlin.test.relay");
const QString kNotes = QStringLiteral("com.quorlin.test.notes");

QString uuidOf(const plist::Value& payload) {
    return payload.dictionary()->string(QStringLiteral("PayloadUUID")).value_or(QString());
}

class ProfileCommandsTest : public ProfileToolTest {
protected:
    // A relay profile whose only fault is what `change` puts in.
    QString relayProfile(const QString& name, const std::function<void(plist::Dictionary&)>& change = {}) {
        const QString path = newProfile(name, {kRelay});
        editPayload(path, 0, [&](plist::Dictionary& payload) {
            payload.insert("Host", "relay.example.com");
            if (change)
                change(payload);
        });
        return path;
    }
};

} // namespace

TEST_F(ProfileCommandsTest, NewMakesAProfileWithOnePayloadOfEachDomain) {
    const QString path = newProfile("Office Relay.mobileconfig", {kRelay, kNotes});
    const plist::Dictionary profile = readDictionary(path);
    EXPECT_EQ(profile.string("PayloadType"), "Configuration");
    EXPECT_EQ(profile.string("PayloadDisplayName"), "Office Relay")
        << "named after its file, as a new window";
    const plist::Array content = payloads(profile);
    ASSERT_EQ(content.size(), 2);
    EXPECT_EQ(content[0].dictionary()->string("PayloadType"), kRelay);
    EXPECT_EQ(content[1].dictionary()->string("PayloadType"), kNotes);
    const QSet<QString> uuids{*profile.string("PayloadUUID"), uuidOf(content[0]), uuidOf(content[1])};
    EXPECT_EQ(uuids.size(), 3);
    EXPECT_FALSE(uuids.contains(QString()));
}

TEST_F(ProfileCommandsTest, CheckJsonHoldsEachFindingWithItsPayloadAndKeyPath) {
    const QString path =
        relayProfile("faulty.mobileconfig", [](plist::Dictionary& payload) { payload.insert("Port", 0); });
    relayProfile("good.mobileconfig");
    const ToolRun checked =
        run({"check", "--json", "faulty.mobileconfig", "good.mobileconfig", "gone.mobileconfig"});
    EXPECT_EQ(checked.exitCode, 2) << "a file that can't be opened outweighs findings";
    const QJsonObject report = QJsonDocument::fromJson(checked.output).object();
    EXPECT_EQ(report["checked"].toInt(), 2);
    const QJsonArray findings = report["findings"].toArray();
    ASSERT_EQ(findings.size(), 1) << checked.output.toStdString();
    const QJsonObject finding = findings.first().toObject();
    EXPECT_EQ(finding["file"].toString(), "faulty.mobileconfig");
    EXPECT_EQ(finding["payloadType"].toString(), kRelay);
    EXPECT_EQ(finding["payloadDisplayName"].toString(), "Relay");
    EXPECT_EQ(finding["payloadUUID"].toString(), uuidOf(payloads(readDictionary(path)).first()));
    EXPECT_EQ(finding["keyPath"].toString(), "Port");
    EXPECT_EQ(finding["message"].toString(), "The entered number is lower than the minimum for this field.");
    const QJsonArray errors = report["errors"].toArray();
    ASSERT_EQ(errors.size(), 1);
    EXPECT_EQ(errors.first().toObject()["file"].toString(), "gone.mobileconfig");
    EXPECT_EQ(checked.error, "gone.mobileconfig: cannot open: no such file or directory\n");
}

TEST_F(ProfileCommandsTest, CheckReportsRepeatedPayloadIdentifiersThatFormatRepairs) {
    const QString path = newProfile("twice.mobileconfig", {kNotes, kNotes});
    const plist::Array content = payloads(readDictionary(path));
    const QString firstUUID = uuidOf(content[0]);
    editPayload(path, 1, [&](plist::Dictionary& payload) { payload.insert("PayloadUUID", firstUUID); });

    const ToolRun checked = run({"check", "twice.mobileconfig"});
    EXPECT_EQ(checked.exitCode, 1);
    const QStringList found = lines(checked.output);
    ASSERT_EQ(found.size(), 1) << checked.output.toStdString();
    EXPECT_TRUE(
        found.first().startsWith(QStringLiteral("twice.mobileconfig: %1 “Notes” (%2): PayloadUUID: “%2” is "
                                                "already the PayloadUUID of another payload")
                                     .arg(kNotes, firstUUID)))
        << found.first().toStdString();

    const ToolRun formatted = run({"format", "twice.mobileconfig"});
    EXPECT_EQ(formatted.exitCode, 0) << formatted.error.toStdString();
    EXPECT_EQ(formatted.output, "twice.mobileconfig: reformatted\n");
    const plist::Array repaired = payloads(readDictionary(path));
    EXPECT_EQ(uuidOf(repaired[0]), firstUUID) << "the first keeps its UUID";
    EXPECT_NE(uuidOf(repaired[1]), firstUUID);
    EXPECT_EQ(run({"check", "twice.mobileconfig"}).exitCode, 0);
}

TEST_F(ProfileCommandsTest, FormatRewritesOnlyWhatIsNotInTheEditorsForm) {
    const QString path = newProfile("relay.mobileconfig", {kRelay, kNotes});
    const QByteArray canonical = test::readFile(path);
    const ToolRun inForm = run({"format", "--check", "relay.mobileconfig"});
    EXPECT_EQ(inForm.exitCode, 0) << inForm.output.toStdString();
    EXPECT_TRUE(inForm.output.isEmpty());

    ASSERT_EQ(m_tool.run({"plist", "convert", "-f", "binary1", "relay.mobileconfig"}).exitCode, 0);
    const QByteArray binary = test::readFile(path);
    const ToolRun sameValues = run({"format", "--check", "relay.mobileconfig"});
    EXPECT_EQ(sameValues.exitCode, 0) << "the encoding doesn't count";
    EXPECT_TRUE(sameValues.output.isEmpty());
    EXPECT_EQ(test::readFile(path), binary) << "--check writes nothing";

    ASSERT_TRUE(QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup));
    const ToolRun formatted = run({"format", "."});
    EXPECT_EQ(formatted.exitCode, 0) << formatted.error.toStdString();
    EXPECT_EQ(formatted.output, "./relay.mobileconfig: reformatted\n");
    EXPECT_EQ(test::readFile(path), canonical);
    const QFile::Permissions modeBits = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner |
                                        QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup |
                                        QFile::ReadOther | QFile::WriteOther | QFile::ExeOther;
    EXPECT_EQ(QFileInfo(path).permissions() & modeBits,
              QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup)
        << "a rewrite keeps who may read the profile";

    const ToolRun again = run({"format", "relay.mobileconfig"});
    EXPECT_EQ(again.exitCode, 0);
    EXPECT_TRUE(again.output.isEmpty());
}

TEST_F(ProfileCommandsTest, ExportPayloadWritesOnePayloadAsAPropertyList) {
    const QString path = relayProfile("relay.mobileconfig");
    const plist::Dictionary profile = readDictionary(path);
    const QString uuid = uuidOf(payloads(profile).first());

    const ToolRun exported =
        run({"export-payload", "relay.mobileconfig", "--uuid", uuid, "-o", "relay.plist"});
    EXPECT_EQ(exported.exitCode, 0) << exported.error.toStdString();
    EXPECT_EQ(readDictionary(m_tool.path("relay.plist")), *payloads(profile).first().dictionary());

    const ToolRun stripped =
        run({"export-payload", "relay.mobileconfig", "--uuid", uuid, "--strip-payload-keys", "-o", "-"});
    EXPECT_EQ(stripped.exitCode, 0);
    const auto preferences = plist::PlistReader::read(stripped.output);
    ASSERT_TRUE(preferences.hasValue());
    EXPECT_EQ(preferences->root.dictionary()->keys(), QStringList{"Host"});

    const ToolRun general = run({"export-payload", "relay.mobileconfig", "--uuid",
                                 *profile.string("PayloadUUID"), "-o", "general.plist"});
    EXPECT_EQ(general.exitCode, 0);
    EXPECT_EQ(readDictionary(m_tool.path("general.plist")).string("PayloadType"), "Configuration");

    const ToolRun unknown = run({"export-payload", "relay.mobileconfig", "--uuid", "NOPE", "-o", "x.plist"});
    EXPECT_EQ(unknown.exitCode, 2);
    EXPECT_EQ(unknown.error, "relay.mobileconfig: no payload with the UUID NOPE\n");
    EXPECT_FALSE(QFileInfo::exists(m_tool.path("x.plist")));
}

TEST_F(ProfileCommandsTest, CheckReportsPayloadsTheEditorWouldDropButKeepsUnknownOnes) {
    const QString path = relayProfile("mixed.mobileconfig");
    plist::Dictionary profile = readDictionary(path);
    plist::Array content = payloads(profile);
    content << plist::Value("not a payload")
            << plist::Value(
                   plist::Dictionary{{"PayloadType", "com.quorlin.unknown"}, {"PayloadUUID", "U-1"}});
    profile.insert("PayloadContent", plist::Value(content));
    writeDictionary(path, profile);

    const ToolRun checked = run({"check", "mixed.mobileconfig"});
    EXPECT_EQ(checked.exitCode, 1);
    EXPECT_EQ(checked.output,
              "mixed.mobileconfig: The opened profile contains malformed payload(s) which will not "
              "be written back to file on save.\n");

    ASSERT_EQ(run({"format", "mixed.mobileconfig"}).exitCode, 0);
    const plist::Array kept = payloads(readDictionary(path));
    ASSERT_EQ(kept.size(), 2) << "the malformed one is gone, the unknown one kept";
    EXPECT_EQ(kept[1].dictionary()->string("PayloadType"), "com.quorlin.unknown");
    EXPECT_EQ(run({"check", "mixed.mobileconfig"}).exitCode, 0);
}
