#include "ToolProcess.h"

#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

using quorlin::test::testDataPath;
using quorlin::test::ToolProcess;
using quorlin::test::ToolRun;

namespace {

// One run of tests/data/cli/command-lines.txt and what it must answer.
struct CommandLine {
    int line = 0;
    QString executable;
    QStringList arguments;
    QStringList expectations;
};

QString unescaped(QString text) {
    text.replace(QStringLiteral("$DATA"), QDir::cleanPath(testDataPath()))
        .replace(QStringLiteral("$VERSION"), QStringLiteral(QUORLIN_VERSION));
    return text.replace(QStringLiteral("\\n"), QStringLiteral("\n"))
        .replace(QStringLiteral("\\t"), QStringLiteral("\t"))
        .replace(QStringLiteral("\\s"), QStringLiteral(" "));
}

QList<CommandLine> commandLines() {
    QList<CommandLine> runs;
    const QStringList lines =
        QString::fromUtf8(quorlin::test::readFile(testDataPath(QStringLiteral("cli/command-lines.txt"))))
            .split(u'\n');
    for (qsizetype index = 0; index < lines.size(); ++index) {
        const QString& line = lines[index];
        if (line.isEmpty() || line.startsWith(u'#'))
            continue;
        if (line.startsWith(QLatin1String("$")) || line.startsWith(QLatin1String("editor$"))) {
            const bool editor = line.startsWith(u'e');
            const QString words = unescaped(line.mid(line.indexOf(u'$') + 1));
            runs.append(
                {int(index + 1),
                 editor ? QStringLiteral("quorlin-profile-editor") : QStringLiteral("quorlin-profile"),
                 words.split(u' ', Qt::SkipEmptyParts),
                 {}});
        } else if (!runs.isEmpty()) {
            runs.last().expectations.append(line);
        }
    }
    return runs;
}

void expectText(const QByteArray& actual, char mode, const QString& expected, const char* stream) {
    const QString text = QString::fromUtf8(actual);
    const bool met = mode == '='   ? text == expected
                     : mode == '^' ? text.startsWith(expected)
                     : mode == '$' ? text.endsWith(expected)
                                   : text.contains(expected);
    EXPECT_TRUE(met) << stream << mode << " \"" << expected.toStdString() << "\"\nbut " << stream << " is \""
                     << text.toStdString() << '"';
}

TEST(CommandLinesTest, EachCommandLineAnswersAsWritten) {
    const QList<CommandLine> runs = commandLines();
    ASSERT_GT(runs.size(), 50);
    for (const CommandLine& run : runs) {
        SCOPED_TRACE(QStringLiteral("command-lines.txt:%1: %2 %3")
                         .arg(run.line)
                         .arg(run.executable, run.arguments.join(u' '))
                         .toStdString());
        const ToolProcess tool(run.executable);
        const QString files = testDataPath(QStringLiteral("cli/files"));
        for (const QString& file : quorlin::test::filesBelow(files, {QString()})) {
            const QString copy = tool.path(QDir(files).relativeFilePath(file));
            ASSERT_TRUE(QDir().mkpath(QFileInfo(copy).path()) && QFile::copy(file, copy));
        }
        const ToolRun result = tool.run(run.arguments);
        bool outputSaid = false;
        for (const QString& expectation : run.expectations) {
            const QString value = unescaped(expectation.section(u' ', 1));
            if (expectation.startsWith(QLatin1String("exit ")))
                EXPECT_EQ(result.exitCode, value.toInt()) << result.error.toStdString();
            else if (expectation.startsWith(QLatin1String("absent ")))
                EXPECT_FALSE(QFile::exists(tool.path(value))) << value.toStdString();
            else if (expectation.startsWith(QLatin1String("out")))
                outputSaid = true, expectText(result.output, expectation.at(3).toLatin1(), value, "out");
            else if (expectation.startsWith(QLatin1String("err")))
                expectText(result.error, expectation.at(3).toLatin1(), value, "err");
            else
                ADD_FAILURE() << "unknown expectation " << expectation.toStdString();
        }
        if (result.exitCode == 2 && !outputSaid) {
            EXPECT_TRUE(result.output.isEmpty()) << result.output.toStdString();
        }
    }
}

} // namespace
