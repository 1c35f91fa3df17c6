#include "supply/FolderEventStream.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QSocketNotifier>

#include <sys/inotify.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace quorlin {

namespace {

constexpr quint32 watchedChanges = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_CLOSE_WRITE |
                                   IN_MODIFY | IN_ATTRIB | IN_DELETE_SELF | IN_MOVE_SELF;

QString systemError() {
    return QString::fromLocal8Bit(std::strerror(errno));
}

// The inotify mask in the vocabulary the filter understands.
FolderEventsEventFlags flagsForMask(quint32 mask) {
    FolderEventsEventFlags flags = none;
    if (mask & IN_CREATE)
        flags |= itemCreated;
    if (mask & IN_DELETE)
        flags |= itemRemoved;
    if (mask & (IN_MOVED_FROM | IN_MOVED_TO))
        flags |= itemRenamed;
    if (mask & (IN_MODIFY | IN_CLOSE_WRITE))
        flags |= itemModified;
    if (mask & IN_ATTRIB)
        flags |= itemInodeMetaMod | itemXattrMod;
    if (mask & (IN_DELETE_SELF | IN_MOVE_SELF))
        flags |= rootChanged | itemRemoved;
    // Events were lost: nothing tells what changed, so it must count as a
    // change or the store would silently fall behind the folder.
    if (mask & IN_Q_OVERFLOW)
        flags |= mustScanSubDirs | itemModified;
    flags |= (mask & IN_ISDIR) ? itemIsDir : itemIsFile;
    return flags;
}

} // namespace

FolderEventStream::FolderEventStream(FolderEvents::Handler handler)
    : m_handler(std::move(handler)) {}

FolderEventStream::~FolderEventStream() {
    m_notifier.reset();
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

Expected<bool, FolderEventsError> FolderEventStream::start(const QStringList& roots) {
    m_descriptor = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (m_descriptor < 0)
        return fail(FolderEventsError{FolderEventsError::Code::cannotCreateStream, systemError()});
    for (const QString& root : roots) {
        if (!QFileInfo(root).isDir())
            return fail(FolderEventsError{FolderEventsError::Code::cannotStartStream,
                                          QStringLiteral("Not a folder: %1").arg(root)});
        addTree(root);
    }
    if (m_folders.isEmpty())
        return fail(FolderEventsError{FolderEventsError::Code::cannotStartStream, systemError()});
    m_notifier = std::make_unique<QSocketNotifier>(m_descriptor, QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &FolderEventStream::readEvents);
    return true;
}

void FolderEventStream::addTree(const QString& folder) {
    addFolder(folder);
    QDirIterator below(folder, QDir::Dirs | QDir::NoDotAndDotDot | QDir::NoSymLinks,
                       QDirIterator::Subdirectories);
    while (below.hasNext())
        addFolder(below.next());
}

void FolderEventStream::addFolder(const QString& folder) {
    const int watch = inotify_add_watch(m_descriptor, QFile::encodeName(folder).constData(),
                                        watchedChanges | IN_ONLYDIR | IN_DONT_FOLLOW);
    if (watch >= 0)
        m_folders.insert(watch, QDir::cleanPath(folder));
}

void FolderEventStream::readEvents() {
    alignas(inotify_event) char buffer[16 * 1024];
    m_delivering = true;
    for (;;) {
        const ssize_t length = ::read(m_descriptor, buffer, sizeof buffer);
        if (length <= 0)
            break;
        for (ssize_t offset = 0; offset < length;) {
            const auto* event = reinterpret_cast<const inotify_event*>(buffer + offset);
            const QString name = event->len ? QFile::decodeName(event->name) : QString();
            deliver(event->wd, event->mask, name, event->cookie);
            offset += ssize_t(sizeof(inotify_event) + event->len);
        }
    }
    m_delivering = false;
}

void FolderEventStream::deliver(int watch, quint32 mask, const QString& name, quint32) {
    if (mask & IN_IGNORED) {
        m_folders.remove(watch);
        return;
    }
    const QString folder = m_folders.value(watch);
    const QString path = name.isEmpty() ? folder : folder + QLatin1Char('/') + name;
    // A folder made or moved in may already hold files by the time its
    // watch exists; its arrival event makes the refresh that finds them.
    if ((mask & IN_ISDIR) && (mask & (IN_CREATE | IN_MOVED_TO)))
        addTree(path);
    m_handler(FolderEventsEvent{path, flagsForMask(mask), m_nextID++});
}

} // namespace quorlin
