#include "ToolProcess.h"

#include "plist/PlistReader.h"
#include "support/TestSupport.h"

#include <QFile>
#include <QRegularExpression>

#include <gtest/gtest.h>

using namespace quorlin;
using quorlin::test::ToolProcess;
using quorlin::test::ToolRun;

namespace {

const QByteArray kXml = R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">
<dict>
	<key>count</key>
	<integer>42</integer>
	<key>enabled</key>
	<true/>
	<key>list</key>
	<array>
		<string>a</string>
		<integer>1</integer>
	</array>
	<key>name</key>
	<string>Quorlin</string>
</dict>
</plist>
)";

// The same dictionary in binary form, as another implementation writes it.
const QByteArray kBinary = QByteArray::fromHex(
    "62706c6973743030d4010203040506070a55636f756e7457656e61626c6564546c697374546e616d65102a09a208095161100157"
    "51756f"
    "726c696e0811171f24292b2c2f31330000000000000101000000000000000b0000000000000000000000000000003b");

const plist::Value kExpected =
    plist::Dictionary{{"count", 42}, {"enabled", true}, {"list", plist::Array{"a", 1}}, {"name", "Quorlin"}};

// The XML with its dictionary left open.
const QByteArray kTruncatedXml = kXml.left(kXml.indexOf("\t<key>name</key>"));

class PlistCommandsTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(m_tool.isValid()); }

    QString write(const QString& name, const QByteArray& bytes) {
        QFile file(m_tool.path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        return name;
    }
    QByteArray read(const QString& name) const { return test::readFile(m_tool.path(name)); }

    // The file's tree, and that it is in the given encoding.
    static testing::AssertionResult holds(const QByteArray& bytes, plist::Format format) {
        const auto read = plist::PlistReader::read(bytes);
        if (!read)
            return testing::AssertionFailure() << read.error().toString().toStdString();
        if (read->format != format)
            return testing::AssertionFailure() << "another encoding";
        if (!(read->root == kExpected))
            return testing::AssertionFailure() << read->root.debugDescription().toStdString();
        return testing::AssertionSuccess();
    }

    ToolProcess m_tool;
};

} // namespace

TEST_F(PlistCommandsTest, LintAcceptsGoodFilesOfEveryEncoding) {
    write("a.plist", kXml);
    write("b.plist", kBinary);
    const ToolRun run = m_tool.run({"plist", "lint", "a.plist", "b.plist"});
    EXPECT_EQ(run.exitCode, 0) << run.error.toStdString();
    EXPECT_EQ(run.output, "a.plist: OK\nb.plist: OK\n");
    EXPECT_TRUE(run.error.isEmpty());
}

TEST_F(PlistCommandsTest, LintNamesEachBadFileWithTheReasonAndWhere) {
    write("good.plist", kXml);
    write("bad.plist", kTruncatedXml);
    write("bad.bplist", kBinary.left(40));
    const ToolRun run = m_tool.run({"plist", "lint", "bad.plist", "good.plist", "bad.bplist"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.output, "good.plist: OK\n");
    const QStringList lines = QString::fromUtf8(run.error).split(u'\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 2) << run.error.toStdString();
    EXPECT_TRUE(
        QRegularExpression(QStringLiteral(R"(^bad\.plist: .+ \(line \d+\)$)")).match(lines[0]).hasMatch())
        << lines[0].toStdString();
    EXPECT_TRUE(
        QRegularExpression(QStringLiteral(R"(^bad\.bplist: .+ \(byte \d+\)$)")).match(lines[1]).hasMatch())
        << lines[1].toStdString();
}

TEST_F(PlistCommandsTest, LintReportsAFileThatCannotBeOpenedAsAnInputError) {
    const ToolRun run = m_tool.run({"plist", "lint", "missing.plist", "."});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_TRUE(run.output.isEmpty());
    EXPECT_EQ(run.error,
              "missing.plist: cannot open: no such file or directory\n.: cannot open: is a directory\n");

    const ToolRun none = m_tool.run({"plist", "lint"});
    EXPECT_EQ(none.exitCode, 2);
    EXPECT_TRUE(none.error.startsWith("quorlin-profile plist lint: no file given\n"));
}

TEST_F(PlistCommandsTest, LintChecksTheOthersWhenOneCannotBeOpened) {
    write("good.plist", kXml);
    write("bad.plist", kTruncatedXml);
    const ToolRun run = m_tool.run({"plist", "lint", "good.plist", "missing.plist", "bad.plist"});
    EXPECT_EQ(run.exitCode, 2) << "an unreadable file outweighs a bad one";
    EXPECT_EQ(run.output, "good.plist: OK\n");
    EXPECT_TRUE(run.error.startsWith("missing.plist: cannot open: "));
    EXPECT_TRUE(run.error.contains("\nbad.plist: "));
}

TEST_F(PlistCommandsTest, ConvertRewritesAFileInPlace) {
    write("p.plist", kXml);
    const ToolRun toBinary = m_tool.run({"plist", "convert", "-f", "binary1", "p.plist"});
    EXPECT_EQ(toBinary.exitCode, 0) << toBinary.error.toStdString();
    EXPECT_TRUE(toBinary.output.isEmpty() && toBinary.error.isEmpty());
    EXPECT_TRUE(holds(read("p.plist"), plist::Format::Binary));

    const ToolRun toXml = m_tool.run({"plist", "convert", "p.plist", "-f", "xml1"});
    EXPECT_EQ(toXml.exitCode, 0) << toXml.error.toStdString();
    EXPECT_TRUE(holds(read("p.plist"), plist::Format::Xml));
}

TEST_F(PlistCommandsTest, ConvertWritesToAnotherFileOrToStandardOutput) {
    write("in.plist", kBinary);
    const ToolRun toFile = m_tool.run({"plist", "convert", "-f", "xml1", "in.plist", "-o", "out.plist"});
    EXPECT_EQ(toFile.exitCode, 0) << toFile.error.toStdString();
    EXPECT_TRUE(holds(read("out.plist"), plist::Format::Xml));
    EXPECT_EQ(read("in.plist"), kBinary);

    const ToolRun toStandardOutput = m_tool.run({"plist", "convert", "-o", "-", "-f", "xml1", "in.plist"});
    EXPECT_EQ(toStandardOutput.exitCode, 0) << toStandardOutput.error.toStdString();
    EXPECT_TRUE(toStandardOutput.error.isEmpty());
    EXPECT_TRUE(holds(toStandardOutput.output, plist::Format::Xml));

    const ToolRun binaryOut = m_tool.run({"plist", "convert", "-f", "binary1", "out.plist", "-o", "-"});
    EXPECT_EQ(binaryOut.exitCode, 0) << binaryOut.error.toStdString();
    EXPECT_TRUE(holds(binaryOut.output, plist::Format::Binary));
}

TEST_F(PlistCommandsTest, ConvertRefusesAWrongCommandLine) {
    write("p.plist", kXml);
    struct Case {
        QStringList arguments;
        const char* message;
    };
    for (const Case& c : {Case{{"p.plist"}, "no format given (-f xml1 or -f binary1)"},
                          Case{{"-f", "json", "p.plist"}, "unknown format 'json' (use xml1 or binary1)"},
                          Case{{"-f", "xml1"}, "give exactly one file"},
                          Case{{"-f", "xml1", "p.plist", "q.plist"}, "give exactly one file"},
                          Case{{"-f", "xml1", "p.plist", "-o"}, "option '-o' needs a value"},
                          Case{{"-f", "xml1", "-f", "binary1", "p.plist"}, "option '-f' given twice"},
                          Case{{"-x", "p.plist"}, "unknown option '-x'"}}) {
        SCOPED_TRACE(c.arguments.join(u' ').toStdString());
        const ToolRun run = m_tool.run(QStringList{"plist", "convert"} + c.arguments);
        EXPECT_EQ(run.exitCode, 2);
        EXPECT_TRUE(run.error.startsWith(QByteArray("quorlin-profile plist convert: ") + c.message + '\n'))
            << run.error.toStdString();
    }
    EXPECT_EQ(read("p.plist"), kXml);
}

TEST_F(PlistCommandsTest, ConvertLeavesFilesAsTheyWereWhenItFails) {
    write("bad.plist", kTruncatedXml);
    const ToolRun bad = m_tool.run({"plist", "convert", "-f", "binary1", "bad.plist"});
    EXPECT_EQ(bad.exitCode, 2);
    EXPECT_TRUE(bad.error.startsWith("bad.plist: "));
    EXPECT_EQ(read("bad.plist"), kTruncatedXml);

    const ToolRun missing = m_tool.run({"plist", "convert", "-f", "binary1", "missing.plist"});
    EXPECT_EQ(missing.exitCode, 2);
    EXPECT_EQ(missing.error, "missing.plist: cannot open: no such file or directory\n");
}

TEST_F(PlistCommandsTest, ConvertReportsAnOutputThatCannotBeWritten) {
    write("p.plist", kXml);
    const ToolRun run =
        m_tool.run({"plist", "convert", "-f", "binary1", "p.plist", "-o", "no/such/folder/out.plist"});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_TRUE(run.error.startsWith("no/such/folder/out.plist: cannot write: ")) << run.error.toStdString();
}
