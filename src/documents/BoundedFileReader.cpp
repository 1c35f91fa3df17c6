#include "documents/BoundedFileReader.h"

#include "documents/SystemErrorWords.h"

#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

namespace quorlin {

namespace {

const QString kTooLarge = QStringLiteral("is larger than 512 MB");

Unexpected<QString> systemFailure() {
    return fail(SystemErrorWords::describe(errno));
}

// Reads until the end, or one byte past the limit to tell that it is over.
Expected<QByteArray, QString> readUpToLimit(int descriptor) {
    QByteArray bytes;
    char buffer[64 * 1024];
    for (;;) {
        const ssize_t count = ::read(descriptor, buffer, sizeof buffer);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return systemFailure();
        if (count == 0)
            return bytes;
        if (bytes.size() + count > BoundedFileReader::maximumSize)
            return fail(kTooLarge);
        bytes.append(buffer, count);
    }
}

std::optional<QString> refusalOf(const struct stat& status) {
    if (S_ISDIR(status.st_mode))
        return QStringLiteral("is a directory");
    if (S_ISFIFO(status.st_mode))
        return QStringLiteral("is a pipe, not a file (give - to read standard input)");
    if (!S_ISREG(status.st_mode))
        return QStringLiteral("is a device, not a file");
    if (status.st_size > BoundedFileReader::maximumSize)
        return kTooLarge;
    return std::nullopt;
}

class Descriptor {
public:
    explicit Descriptor(int descriptor)
        : m_descriptor(descriptor) {}
    ~Descriptor() {
        if (m_descriptor >= 0)
            ::close(m_descriptor);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int get() const { return m_descriptor; }

private:
    int m_descriptor;
};

} // namespace

Expected<QByteArray, QString> BoundedFileReader::read(const QString& path) {
    // Not blocking, so that opening a named pipe doesn't wait for a writer.
    const Descriptor file(::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    if (file.get() < 0)
        return systemFailure();
    struct stat status {};
    if (::fstat(file.get(), &status) != 0)
        return systemFailure();
    if (const auto refusal = refusalOf(status))
        return fail(*refusal);
    return readUpToLimit(file.get());
}

Expected<QByteArray, QString> BoundedFileReader::readStandardInput() {
    struct stat status {};
    if (::fstat(STDIN_FILENO, &status) != 0)
        return systemFailure();
    // A terminal is typed into; any other device never ends or means nothing.
    const bool isStream = S_ISFIFO(status.st_mode) || S_ISSOCK(status.st_mode) || ::isatty(STDIN_FILENO);
    if (!isStream) {
        if (const auto refusal = refusalOf(status))
            return fail(*refusal);
    }
    return readUpToLimit(STDIN_FILENO);
}

} // namespace quorlin
