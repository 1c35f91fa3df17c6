#pragma once

#include <QByteArray>
#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QProcessEnvironment>
#include <QStringList>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace quorlin::test {

struct ToolRun {
    int exitCode = -1;
    QByteArray output;
    QByteArray error;
};

// Runs one of the built executables in a folder of the test's own, with
// settings and data folders inside it, so that no run touches the user's.
class ToolProcess {
public:
    explicit ToolProcess(QString executable = QStringLiteral("quorlin-profile"))
        : m_executable(std::move(executable)) {}

    bool isValid() const { return m_folder.isValid(); }
    // A path inside the working folder.
    QString path(const QString& name) const { return m_folder.filePath(name); }
    QString configFolder() const { return path(QStringLiteral("xdg-config")); }
    QString dataFolder() const { return path(QStringLiteral("xdg-data")); }

    // Standard input and output may come from and go to files, "/dev/full" among them.
    ToolRun run(const QStringList& arguments, const QString& standardInput = {},
                const QString& standardOutput = {}) const {
        QProcess process;
        if (!standardInput.isEmpty())
            process.setStandardInputFile(standardInput);
        if (!standardOutput.isEmpty())
            process.setStandardOutputFile(standardOutput);
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"), configFolder());
        environment.insert(QStringLiteral("XDG_DATA_HOME"), dataFolder());
        // Anything that still looks below HOME, OpenSSL's defaults among them, looks here.
        environment.insert(QStringLiteral("HOME"), path(QStringLiteral("home")));
        process.setProcessEnvironment(environment);
        process.setWorkingDirectory(m_folder.path());
        process.start(QDir(binaryFolder()).filePath(m_executable), arguments);
        ToolRun result;
        // The event loop keeps turning while the tool runs, so a loopback
        // server of the test's own can answer it.
        const QDeadlineTimer deadline(60000);
        while (process.state() != QProcess::NotRunning && !process.waitForFinished(20)) {
            QCoreApplication::processEvents();
            if (deadline.hasExpired())
                return result;
        }
        if (process.exitStatus() != QProcess::NormalExit)
            return result;
        result.exitCode = process.exitCode();
        result.output = process.readAllStandardOutput();
        result.error = process.readAllStandardError();
        return result;
    }

private:
    static QString binaryFolder() {
        const QString fromTestRunner = qEnvironmentVariable("QUORLIN_BIN_DIR");
        return fromTestRunner.isEmpty() ? QStringLiteral(QUORLIN_BINARY_DIR "/bin") : fromTestRunner;
    }

    QString m_executable;
    QTemporaryDir m_folder;
};

inline QStringList lines(const QByteArray& output) {
    return QString::fromUtf8(output).split(u'\n', Qt::SkipEmptyParts);
}

inline QJsonDocument json(const QByteArray& output) {
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(output, &error);
    EXPECT_EQ(error.error, QJsonParseError::NoError) << error.errorString().toStdString() << "\n"
                                                     << output.toStdString();
    return document;
}

} // namespace quorlin::test
