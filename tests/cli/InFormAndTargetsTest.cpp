// What `format --check` counts as in form whatever the file's encoding, and
// when `check` holds a key's introduction against a minimum target.

#include "ToolProcess.h"

#include "plist/BinaryWriter.h"
#include "plist/PlistReader.h"
#include "plist/XmlWriter.h"
#include "support/TestSupport.h"

#include <QFile>

#include <functional>

using namespace quorlin;
using quorlin::test::ToolRun;

namespace {

plist::Dictionary corpusTree(const QString& name) {
    const auto read = plist::PlistReader::read(test::readFile(test::testDataPath("held-values/" + name)));
    return read && read->root.dictionary() ? *read->root.dictionary() : plist::Dictionary();
}

// A payload that repeats the profile's UUID gets a new one when written.
void repeatRootUUID(plist::Dictionary& profile) {
    plist::Array payloads = *profile.array("PayloadContent");
    plist::Dictionary first = *payloads.first().dictionary();
    first.insert("PayloadUUID", profile.value("PayloadUUID"));
    payloads[0] = first;
    profile.insert("PayloadContent", payloads);
}

struct Encoding {
    const char* name;
    std::function<Expected<QByteArray, QString>(const plist::Value&)> write;
};

struct Case {
    const char* corpus;
    bool changed;
};

TEST(InForm, CheckCountsValuesNotTheirEncodingAndFormatWritesXml) {
    const Encoding encodings[] = {{"xml", plist::XmlWriter::write}, {"binary", plist::BinaryWriter::write}};
    const Case cases[] = {{"wrong-class.mobileconfig", false},
                          {"undescribed-nested.mobileconfig", false},
                          {"excluded.mobileconfig", true}};
    test::ToolProcess tool;
    for (const Encoding& encoding : encodings) {
        for (const Case& item : cases) {
            SCOPED_TRACE(std::string(encoding.name) + " " + item.corpus);
            plist::Dictionary profile = corpusTree(item.corpus);
            if (item.changed)
                repeatRootUUID(profile);
            const auto bytes = encoding.write(plist::Value(profile));
            ASSERT_TRUE(bytes);
            const QString name = QStringLiteral("%1-%2").arg(encoding.name, item.corpus);
            QFile file(tool.path(name));
            ASSERT_TRUE(file.open(QIODevice::WriteOnly));
            file.write(*bytes);
            file.close();

            const ToolRun checked = tool.run({"format", "--check", name});
            EXPECT_EQ(checked.exitCode, item.changed ? 1 : 0) << checked.output.toStdString();
            EXPECT_EQ(checked.output.contains("would be reformatted"), item.changed);
            const ToolRun formatted = tool.run({"format", name});
            EXPECT_EQ(formatted.exitCode, 0) << formatted.error.toStdString();
            const auto written = plist::PlistReader::read(test::readFile(tool.path(name)));
            ASSERT_TRUE(written);
            EXPECT_EQ(written->format, plist::Format::Xml);
            EXPECT_EQ(tool.run({"format", "--check", name}).exitCode, 0);
        }
    }
}

// No minimum, no claim that older systems are aimed at; a minimum given is
// held against.
TEST(CheckTargets, AKeysIntroductionCountsOnlyAgainstAMinimum) {
    test::ToolProcess tool;
    ASSERT_TRUE(
        QFile::copy(test::testDataPath("held-values/excluded.mobileconfig"), tool.path("p.mobileconfig")));
    const auto introducedAfterMinimum = [&](const QStringList& options) {
        const ToolRun checked =
            tool.run(QStringList{"check", "--json", "--platform", "macOS", "p.mobileconfig"} + options);
        const QJsonArray findings = test::json(checked.output).object().value("findings").toArray();
        return std::count_if(findings.begin(), findings.end(), [](const QJsonValue& finding) {
            return finding.toObject().value("message").toString().contains("after your minimum target of");
        });
    };
    EXPECT_EQ(introducedAfterMinimum({}), 0);
    EXPECT_GT(introducedAfterMinimum({"--os-min", "1.0"}), 0);
    EXPECT_EQ(introducedAfterMinimum({"--os-min", "99.0"}), 0);
}

} // namespace
