#include "documents/SystemErrorWords.h"

#include <cerrno>
#include <cstring>

namespace quorlin {

QString SystemErrorWords::describe(int errorNumber) {
    switch (errorNumber) {
    case ENOSPC:
        return QStringLiteral("no space left on the device");
    case EDQUOT:
        return QStringLiteral("the disk quota is used up");
    case EROFS:
        return QStringLiteral("the file system is read-only");
    case EACCES:
    case EPERM:
        return QStringLiteral("permission denied");
    case EIO:
        return QStringLiteral("input/output error on the device");
    case EFBIG:
        return QStringLiteral("the file is too large");
    case ENAMETOOLONG:
        return QStringLiteral("the name is too long");
    case EPIPE:
        return QStringLiteral("the reading end was closed");
    case EXDEV:
        return QStringLiteral("the file and its temporary copy are on different devices");
    case 0:
        return QStringLiteral("the write stopped short for no reason the system gave");
    default:
        break;
    }
    // The C library's words for the rest, in the same lower-case style.
    QString words = QString::fromLocal8Bit(std::strerror(errorNumber));
    if (!words.isEmpty())
        words[0] = words[0].toLower();
    return words;
}

} // namespace quorlin
