#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QTemporaryDir>

#include <sys/mount.h>
#include <unistd.h>

namespace quorlin::test {

// A tiny tmpfs of the test's own, to meet a full disk and a read-only file
// system for real. Mounting needs root (CI runs as root); a test that can't
// mount skips with kSkipReason.
class ScratchMount {
public:
    static inline const char* const kSkipReason = "mounting a tmpfs needs root; run as root to test this";

    explicit ScratchMount(const char* options = "size=64k") {
        m_mounted = ::geteuid() == 0 && ::mount("tmpfs", QFile::encodeName(m_folder.path()).constData(),
                                                "tmpfs", 0, options) == 0;
    }
    ~ScratchMount() {
        if (m_mounted)
            ::umount2(QFile::encodeName(m_folder.path()).constData(), MNT_DETACH);
    }
    ScratchMount(const ScratchMount&) = delete;
    ScratchMount& operator=(const ScratchMount&) = delete;

    bool isMounted() const { return m_mounted; }
    QString path(const QString& name) const { return m_folder.filePath(name); }

    // Writes a file, then takes up every byte that is left.
    void fillAfter(const QString& name, const QByteArray& bytes) const {
        put(name, bytes);
        QFile filler(path(QStringLiteral("filler")));
        if (filler.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
            while (filler.write(QByteArray(4096, 'f')) > 0) {
            }
    }
    // Writes a file, then makes the whole file system read-only.
    bool readOnlyAfter(const QString& name, const QByteArray& bytes) const {
        put(name, bytes);
        return ::mount(nullptr, QFile::encodeName(m_folder.path()).constData(), nullptr,
                       MS_REMOUNT | MS_RDONLY, nullptr) == 0;
    }
    void put(const QString& name, const QByteArray& bytes) const {
        QFile file(path(name));
        if (file.open(QIODevice::WriteOnly))
            file.write(bytes);
    }

private:
    QTemporaryDir m_folder;
    bool m_mounted = false;
};

} // namespace quorlin::test
