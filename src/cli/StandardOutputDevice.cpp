#include "cli/StandardOutputDevice.h"

#include "documents/SystemErrorWords.h"

#include <cerrno>
#include <unistd.h>

namespace quorlin::cli {

StandardOutputDevice::StandardOutputDevice(int descriptor)
    : m_descriptor(descriptor) {
    open(QIODevice::WriteOnly | QIODevice::Unbuffered);
}

qint64 StandardOutputDevice::readData(char*, qint64) {
    return -1;
}

qint64 StandardOutputDevice::writeData(const char* data, qint64 size) {
    qint64 done = 0;
    while (done < size) {
        const ssize_t written = ::write(m_descriptor, data + done, size_t(size - done));
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0) {
            setErrorString(SystemErrorWords::describe(written == 0 ? ENOSPC : errno));
            return -1;
        }
        done += written;
    }
    return done;
}

} // namespace quorlin::cli
