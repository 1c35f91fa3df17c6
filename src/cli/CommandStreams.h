#pragma once

#include <QByteArray>
#include <QIODevice>
#include <QString>

#include <optional>

namespace quorlin::cli {

// The standard output and error of a command, as devices so that a test can
// read what a command printed without a process of its own.
class CommandStreams {
public:
    CommandStreams(QIODevice& output, QIODevice& error)
        : m_output(output)
        , m_error(error) {}

    // One line of UTF-8 text.
    void print(const QString& line) { writeOutput(line.toUtf8() + '\n'); }
    void printError(const QString& line) { m_error.write(line.toUtf8() + '\n'); }
    // Bytes as they are, e.g. a property list written to standard output.
    void writeOutput(const QByteArray& bytes) {
        if (m_output.write(bytes) != bytes.size() && !m_outputFailure)
            m_outputFailure = m_output.errorString();
    }
    // Why some of the output didn't arrive, if it didn't: the first failure.
    const std::optional<QString>& outputFailure() const { return m_outputFailure; }

private:
    QIODevice& m_output;
    QIODevice& m_error;
    std::optional<QString> m_outputFailure;
};

} // namespace quorlin::cli
