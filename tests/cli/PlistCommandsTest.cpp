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

// The same dictionary in XML and in binary form, the latter as another implementation writes it.
const QByteArray kXml = test::readFile(test::testDataPath("cli/files/sample.plist"));
const QByteArray kBinary = test::readFile(test::testDataPath("cli/files/sample.bplist"));

const plist::Value kExpected =
    plist::Dictionary{{"count", 42}, {"enabled", true}, {"list", plist::Array{"a", 1}}, {"name", "Quorlin"}};

// The XML with its dictionary left open.
const QByteArray kTruncatedXml = test::readFile(test::testDataPath("cli/files/truncated.plist"));

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

TEST_F(PlistCommandsTest, ConvertLeavesFilesAsTheyWereWhenItFails) {
    write("bad.plist", kTruncatedXml);
    const ToolRun bad = m_tool.run({"plist", "convert", "-f", "binary1", "bad.plist"});
    EXPECT_EQ(bad.exitCode, 2);
    EXPECT_TRUE(bad.error.startsWith("bad.plist: "));
    EXPECT_EQ(read("bad.plist"), kTruncatedXml);
}
