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
    // "FILE: TYPE “NAME” (UUID): " for the first payload of a profile.
    static QString payloadPrefix(const QString& file, const QString& path) {
        const plist::Value payload = payloads(readDictionary(path)).first();
        return QStringLiteral("%1: %2 “%3” (%4): ")
            .arg(file, *payload.dictionary()->string("PayloadType"),
                 *payload.dictionary()->string("PayloadDisplayName"), uuidOf(payload));
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

TEST_F(ProfileCommandsTest, NewRefusesWhatItCannotMake) {
    const ToolRun unknown = run({"new", kRelay, "com.quorlin.nothing", "-o", "x.mobileconfig"});
    EXPECT_EQ(unknown.exitCode, 2);
    EXPECT_TRUE(unknown.error.contains("unknown domain 'com.quorlin.nothing'"))
        << unknown.error.toStdString();
    EXPECT_FALSE(QFileInfo::exists(m_tool.path("x.mobileconfig")));

    const ToolRun noOutput = run({"new", kRelay});
    EXPECT_EQ(noOutput.exitCode, 2);
    EXPECT_TRUE(noOutput.error.startsWith("quorlin-profile new: no output file given (-o FILE)\n"));

    const ToolRun unwritable = run({"new", kRelay, "-o", "missing-folder/x.mobileconfig"});
    EXPECT_EQ(unwritable.exitCode, 2);
    EXPECT_TRUE(unwritable.error.startsWith("missing-folder/x.mobileconfig: cannot write: "));
}

TEST_F(ProfileCommandsTest, CheckReportsEveryFieldFaultInTheEditorsWords) {
    const QString fresh = newProfile("fresh.mobileconfig", {kRelay});
    const ToolRun freshRun = run({"check", "fresh.mobileconfig"});
    EXPECT_EQ(freshRun.exitCode, 1);
    EXPECT_EQ(lines(freshRun.output), QStringList{payloadPrefix("fresh.mobileconfig", fresh) +
                                                  "Host: This field must have a value set."});

    const QString faulty = relayProfile("faulty.mobileconfig", [](plist::Dictionary& payload) {
        payload.insert("Host", "Relay Host!");
        payload.insert("Port", 70000);
        payload.insert("Account", plist::Dictionary{{"User", "ab"}});
    });
    const ToolRun faultyRun = run({"check", "faulty.mobileconfig"});
    EXPECT_EQ(faultyRun.exitCode, 1);
    const QString prefix = payloadPrefix("faulty.mobileconfig", faulty);
    EXPECT_EQ(
        lines(faultyRun.output),
        (QStringList{
            prefix + "Host: The entered information is not in the correct format for this field.",
            prefix + "Port: The entered number is higher than the maximum for this field.",
            prefix + "Account: One of the dictionary items is invalid.",
            prefix + "Account.User: The string has 2 character(s), which is smaller than the minimum of 3.",
        }));
    EXPECT_TRUE(faultyRun.error.isEmpty()) << faultyRun.error.toStdString();

    relayProfile("good.mobileconfig");
    const ToolRun goodRun = run({"check", "good.mobileconfig"});
    EXPECT_EQ(goodRun.exitCode, 0) << goodRun.output.toStdString();
    EXPECT_EQ(goodRun.output, "good.mobileconfig: OK\n");
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

TEST_F(ProfileCommandsTest, CheckHoldsKeysAgainstTheTargetsGiven) {
    const QString relay = relayProfile("relay.mobileconfig",
                                       [](plist::Dictionary& payload) { payload.insert("Handoff", true); });
    const ToolRun untargeted = run({"check", "relay.mobileconfig"});
    EXPECT_EQ(untargeted.exitCode, 0) << "an opened file has no targets: " << untargeted.output.toStdString();

    const QString prefix = payloadPrefix("relay.mobileconfig", relay);
    const ToolRun olderIOS =
        run({"check", "relay.mobileconfig", "--platform", "iOS", "--os-min", "15.0", "--os-max", "16.4"});
    EXPECT_EQ(olderIOS.exitCode, 1);
    EXPECT_EQ(lines(olderIOS.output),
              QStringList{prefix + "Handoff: The preference was introduced in iOS 17.0, after your maximum "
                                   "target of 16.4."});

    // No lower bound claims no older system, as in the editor's targets.
    const ToolRun unbounded = run({"check", "relay.mobileconfig", "--platform", "iOS"});
    EXPECT_FALSE(unbounded.output.contains("after your minimum target")) << unbounded.output.toStdString();

    const ToolRun newerIOS = run({"check", "relay.mobileconfig", "--platform", "ios", "--os-min", "17.0"});
    EXPECT_EQ(newerIOS.exitCode, 0) << newerIOS.output.toStdString();

    const ToolRun mac = run({"check", "relay.mobileconfig", "--platform", "macOS,iOS", "--os-min", "17.0"});
    EXPECT_EQ(mac.exitCode, 1);
    EXPECT_EQ(lines(mac.output), QStringList{prefix + "Handoff: The preference is not supported on macOS."});
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

TEST_F(ProfileCommandsTest, CheckOpensFoldersAndRefusesWhatIsNoConfigurationProfile) {
    ASSERT_TRUE(QDir(m_tool.path(".")).mkpath("profiles/nested"));
    relayProfile("profiles/good.mobileconfig");
    const auto root = [](const QString& type) {
        return *plist::XmlWriter::write(
            plist::Dictionary{{"PayloadType", type}, {"PayloadContent", plist::Array{}}});
    };
    writeFile("profiles/nested/service.mobileconfig", root("Profile Service"));
    writeFile("profiles/nested/enroll.mobileconfig", root("Enrollment Service"));
    writeFile("profiles/nested/other.mobileconfig", root("Something Else"));
    writeFile("profiles/junk.mobileconfig", "not a property list");
    writeFile("profiles/empty.mobileconfig", "");
    writeFile("profiles/ignored.plist", root("Profile Service"));

    const ToolRun checked = run({"check", "profiles"});
    EXPECT_EQ(checked.exitCode, 2);
    EXPECT_EQ(checked.output, "profiles/good.mobileconfig: OK\n");
    EXPECT_EQ(
        lines(checked.error),
        (QStringList{
            "profiles/empty.mobileconfig: the file is empty",
            "profiles/junk.mobileconfig: The document could not be opened because it is not a readable "
            "configuration profile. Not a property list: expected '=' after the key \"not\" (line 1).",
            "profiles/nested/enroll.mobileconfig: The document “enroll.mobileconfig” is an MDM enrollment "
            "profile and not a configuration profile.",
            "profiles/nested/other.mobileconfig: The document could not be opened because it is not a "
            "readable configuration profile. Its “PayloadType” is “Something Else”, not “Configuration”.",
            "profiles/nested/service.mobileconfig: The document “service.mobileconfig” is a profile service "
            "payload and not a configuration profile.",
        }));
}

TEST_F(ProfileCommandsTest, CheckUsageErrorsSayWhatIsWrong) {
    struct Case {
        QStringList arguments;
        const char* message;
    };
    for (const Case& c : {
             Case{{"check"}, "quorlin-profile check: no file given\n"},
             Case{{"check", "a.mobileconfig", "--os-min", "12"},
                  "quorlin-profile check: --os-min and --os-max need a platform (--platform NAME)\n"},
             Case{{"check", "a.mobileconfig", "--platform", "Android"},
                  "quorlin-profile check: unknown platform 'Android' (use iOS, macOS, tvOS, watchOS)\n"},
             Case{{"check", "a.mobileconfig", "--strict"},
                  "quorlin-profile check: unknown option '--strict'\n"},
             Case{{"check", "a.mobileconfig", "--platform", "iOS", "--os-min", "fourteen"},
                  "quorlin-profile check: --os-min takes a version such as 14 or 13.5.1, not 'fourteen'\n"},
             Case{{"check", "a.mobileconfig", "--platform", "iOS", "--os-max", "15..1"},
                  "quorlin-profile check: --os-max takes a version such as 14 or 13.5.1, not '15..1'\n"},
         }) {
        SCOPED_TRACE(c.arguments.join(u' ').toStdString());
        const ToolRun checked = m_tool.run(c.arguments);
        EXPECT_EQ(checked.exitCode, 2);
        EXPECT_TRUE(checked.error.startsWith(c.message)) << checked.error.toStdString();
        EXPECT_TRUE(checked.output.isEmpty());
    }
    const ToolRun badFolder = m_tool.run({"check", "a.mobileconfig", "--manifests", "nowhere"});
    EXPECT_EQ(badFolder.exitCode, 2);
    EXPECT_EQ(badFolder.error, "quorlin-profile check: nowhere: not a folder\n");
    // A folder of manifests that can't read any profile is the fault, not the profile.
    const ToolRun noGeneral = m_tool.run({"check", "a.mobileconfig", "--manifests",
                                          quorlin::test::testDataPath("cli/manifests-without-general")});
    EXPECT_EQ(noGeneral.exitCode, 2);
    EXPECT_TRUE(noGeneral.error.endsWith("manifests-without-general: no manifest here describes the general "
                                         "settings of a profile\n"))
        << noGeneral.error.toStdString();
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
