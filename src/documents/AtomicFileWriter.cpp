#include "documents/AtomicFileWriter.h"

#include "documents/DocumentErrorWords.h"
#include "documents/SystemErrorWords.h"

#include <QFile>
#include <QFileDevice>
#include <QFileInfo>
#include <QRandomGenerator>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace quorlin {

namespace {

using Outcome = Expected<bool, DocumentError>;

// Takes errno at once, before any other call can change it.
Unexpected<DocumentError> systemFailure(QFileDevice::FileError kind) {
    const int errorNumber = errno;
    return fail(DocumentError::fileFailed(int(kind), SystemErrorWords::describe(errorNumber)));
}

bool writeAll(int descriptor, const QByteArray& bytes) {
    const char* next = bytes.constData();
    qsizetype left = bytes.size();
    while (left > 0) {
        const ssize_t written = ::write(descriptor, next, size_t(left));
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0) {
            if (written == 0)
                errno = ENOSPC;
            return false;
        }
        next += written;
        left -= written;
    }
    return true;
}

mode_t newFileMode() {
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return 0666 & ~mask;
}

// Another owner can be kept only by root; the group then at least, where
// the user is a member of it. Neither is a reason to fail the save.
void keepOwnerAndGroup(int descriptor, const struct stat& original) {
    if (::fchown(descriptor, original.st_uid, original.st_gid) != 0)
        (void)::fchown(descriptor, uid_t(-1), original.st_gid);
}

// The new contents, beside the file they replace. Made without a name where
// the file system allows it, so a crash leaves nothing behind; named only
// for the moment before the rename.
class TemporaryFile {
public:
    explicit TemporaryFile(const QByteArray& target)
        : m_target(target) {}
    ~TemporaryFile() {
        if (m_descriptor >= 0)
            ::close(m_descriptor);
        if (!m_name.isEmpty())
            ::unlink(m_name.constData());
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    bool open() {
        const QByteArray folder = QFile::encodeName(QFileInfo(QFile::decodeName(m_target)).absolutePath());
        m_descriptor = ::open(folder.constData(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0600);
        if (m_descriptor >= 0 || (errno != EOPNOTSUPP && errno != EISDIR && errno != EINVAL))
            return m_descriptor >= 0;
        QByteArray pattern = siblingName() + "XXXXXX";
        m_descriptor = ::mkstemp(pattern.data());
        if (m_descriptor >= 0)
            m_name = pattern;
        return m_descriptor >= 0;
    }
    int descriptor() const { return m_descriptor; }

    // Gives the anonymous file a name, closes it and moves it over the target.
    bool replaceTarget() {
        if (m_name.isEmpty() && !link())
            return false;
        const int descriptor = std::exchange(m_descriptor, -1);
        if (::close(descriptor) != 0 || ::rename(m_name.constData(), m_target.constData()) != 0)
            return false;
        m_name.clear();
        return true;
    }

private:
    QByteArray siblingName() const {
        const QFileInfo target(QFile::decodeName(m_target));
        return QFile::encodeName(target.absolutePath() + QStringLiteral("/.") + target.fileName() + u'.');
    }
    bool link() {
        const QByteArray self = "/proc/self/fd/" + QByteArray::number(m_descriptor);
        for (int attempt = 0; attempt < 16; ++attempt) {
            const QByteArray name =
                siblingName() + QByteArray::number(QRandomGenerator::global()->generate(), 36);
            if (::linkat(AT_FDCWD, self.constData(), AT_FDCWD, name.constData(), AT_SYMLINK_FOLLOW) == 0) {
                m_name = name;
                return true;
            }
            if (errno != EEXIST)
                return false;
        }
        return false;
    }

    QByteArray m_target;
    QByteArray m_name;
    int m_descriptor = -1;
};

// A device or a pipe: written as it is, and closed, both checked.
Outcome writeInPlace(const QByteArray& target, const QByteArray& bytes) {
    const int descriptor = ::open(target.constData(), O_WRONLY | O_CLOEXEC);
    if (descriptor < 0)
        return systemFailure(QFileDevice::OpenError);
    if (!writeAll(descriptor, bytes)) {
        const auto failure = systemFailure(QFileDevice::WriteError);
        ::close(descriptor);
        return failure;
    }
    if (::close(descriptor) != 0)
        return systemFailure(QFileDevice::WriteError);
    return true;
}

// A link names the file it points to, which is the one to replace.
QByteArray replacedPath(const QString& filePath) {
    const QFileInfo info(filePath);
    const QString resolved = info.isSymLink() ? info.canonicalFilePath() : QString();
    return QFile::encodeName(resolved.isEmpty() ? filePath : resolved);
}

} // namespace

Outcome AtomicFileWriter::write(const QString& filePath, const QByteArray& bytes) const {
    const QByteArray target = replacedPath(filePath);
    struct stat existing {};
    const bool replacesFile = ::stat(target.constData(), &existing) == 0;
    if (replacesFile && S_ISDIR(existing.st_mode)) {
        errno = EISDIR;
        return systemFailure(QFileDevice::OpenError);
    }
    if (replacesFile && !S_ISREG(existing.st_mode))
        return writeInPlace(target, bytes);
    // The folder may allow a replacement that the file itself forbids.
    if (replacesFile && ::access(target.constData(), W_OK) != 0)
        return systemFailure(QFileDevice::OpenError);

    TemporaryFile file(target);
    if (!file.open())
        return systemFailure(QFileDevice::OpenError);
    if (!writeAll(file.descriptor(), bytes))
        return systemFailure(QFileDevice::WriteError);
    // The new file must not widen or narrow who may read the profile.
    if (::fchmod(file.descriptor(), replacesFile ? existing.st_mode & 07777 : newFileMode()) != 0)
        return systemFailure(QFileDevice::PermissionsError);
    if (replacesFile)
        keepOwnerAndGroup(file.descriptor(), existing);
    // Some file systems report a full disk only when the data reaches it.
    if (::fsync(file.descriptor()) != 0)
        return systemFailure(QFileDevice::WriteError);
    if (m_gate && !m_gate(filePath))
        return fail(
            DocumentError::fileFailed(int(QFileDevice::AbortError), DocumentErrorWords::saveInterrupted));
    if (!file.replaceTarget())
        return systemFailure(QFileDevice::RenameError);
    return true;
}

} // namespace quorlin
