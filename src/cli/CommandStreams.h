#pragma once

#include <QByteArray>
#include <QIODevice>
#include <QString>

namespace quorlin::cli {

// The standard output and error of a command, as devices so that a test can
// read what a command printed without a process of its own.
class CommandStreams {
public:
    CommandStreams(QIODevice& output, QIODevice& error)
        : m_output(output)
        , m_error(error) {}

    // One line of UTF-8 text.
    void print(const QString& line) { m_output.write(line.toUtf8() + '\n'); }
    void printError(const QString& line) { m_error.write(line.toUtf8() + '\n'); }
    // Bytes as they are, e.g. a property list written to standard output.
    void writeOutput(const QByteArray& bytes) { m_output.write(bytes); }

private:
    QIODevice& m_output;
    QIODevice& m_error;
};

} // namespace quorlin::cli
