#pragma once

#include "supply/FolderEvents.h"

#include <QHash>
#include <QObject>
#include <QString>
#include <QStringList>

#include <memory>

class QSocketNotifier;

namespace quorlin {

// One recursive watch over a set of folders, built on inotify: every folder
// below the roots gets its own watch, and folders that appear later are
// added as they come, so a file created deep inside is seen at once.
class FolderEventStream : public QObject {
    Q_OBJECT

public:
    explicit FolderEventStream(FolderEvents::Handler handler);
    ~FolderEventStream() override;

    Expected<bool, FolderEventsError> start(const QStringList& roots);
    // True while the handler runs, when the stream must not be destroyed.
    bool isDelivering() const { return m_delivering; }

private:
    void addTree(const QString& folder);
    void addFolder(const QString& folder);
    void readEvents();
    void deliver(int watch, quint32 mask, const QString& name, quint32 cookie);

    FolderEvents::Handler m_handler;
    int m_descriptor = -1;
    std::unique_ptr<QSocketNotifier> m_notifier;
    QHash<int, QString> m_folders;
    quint64 m_nextID = 1;
    bool m_delivering = false;
};

} // namespace quorlin
