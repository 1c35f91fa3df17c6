#include "cli/SecretSource.h"

#include <QFile>
#include <QFileInfo>

#include <cstdio>
#include <fcntl.h>
#include <string>
#include <termios.h>
#include <unistd.h>

namespace quorlin::cli {

namespace {

// Strips one line ending, so that a file written by `echo` gives the same secret as one written by `printf`.
QString firstLine(const QByteArray& bytes) {
    const qsizetype end = bytes.indexOf('\n');
    QByteArray line = end < 0 ? bytes : bytes.left(end);
    if (line.endsWith('\r'))
        line.chop(1);
    return QString::fromUtf8(line);
}

// The controlling terminal, opened for reading and writing, or -1.
class Terminal {
public:
    Terminal()
        : m_descriptor(::open("/dev/tty", O_RDWR | O_NOCTTY | O_CLOEXEC)) {}
    ~Terminal() {
        if (m_descriptor >= 0)
            ::close(m_descriptor);
    }
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    bool isOpen() const { return m_descriptor >= 0; }

    void write(const QByteArray& bytes) const {
        [[maybe_unused]] const auto written = ::write(m_descriptor, bytes.constData(), size_t(bytes.size()));
    }

    // One line typed with echo off; echo comes back even when reading fails.
    std::optional<QByteArray> readHidden() const {
        termios saved{};
        if (::tcgetattr(m_descriptor, &saved) != 0)
            return std::nullopt;
        termios hidden = saved;
        hidden.c_lflag &= ~tcflag_t(ECHO);
        hidden.c_lflag |= ECHONL;
        if (::tcsetattr(m_descriptor, TCSAFLUSH, &hidden) != 0)
            return std::nullopt;
        QByteArray line;
        char character = 0;
        bool ended = false;
        while (::read(m_descriptor, &character, 1) == 1) {
            if (character == '\n') {
                ended = true;
                break;
            }
            line.append(character);
        }
        ::tcsetattr(m_descriptor, TCSAFLUSH, &saved);
        if (!ended && line.isEmpty())
            return std::nullopt;
        return line;
    }

private:
    int m_descriptor;
};

} // namespace

Expected<QString, QString> SecretSource::secret(const QString& identityName) {
    auto result = m_file ? fromFile() : fromTerminal(identityName);
    m_lastError = result ? std::nullopt : std::optional<QString>(result.error());
    return result;
}

std::optional<QString> SecretSource::passphraseFor(const QString& identityName) {
    auto result = secret(identityName);
    if (!result)
        return std::nullopt;
    return *result;
}

Expected<QString, QString> SecretSource::fromFile() const {
    const QString& path = *m_file;
    if (QFileInfo(path).isDir())
        return fail(path + QStringLiteral(": cannot open: is a directory"));
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return fail(path + QStringLiteral(": cannot open: ") + file.errorString());
    return firstLine(file.readAll());
}

Expected<QString, QString> SecretSource::fromTerminal(const QString& identityName) const {
    const Terminal terminal;
    if (!terminal.isOpen() || !::isatty(STDIN_FILENO))
        return fail(QStringLiteral("no terminal to ask at; give the secret in a file instead"));
    const QString prompt = m_prompt.contains(QStringLiteral("%1")) ? m_prompt.arg(identityName) : m_prompt;
    terminal.write(prompt.toUtf8());
    const auto line = terminal.readHidden();
    if (!line)
        return fail(QStringLiteral("nothing was typed at the terminal"));
    return QString::fromUtf8(*line);
}

} // namespace quorlin::cli
