#include "supply/FolderEvents.h"

#include "supply/FolderEventStream.h"

#include <QHash>

#include <memory>

namespace quorlin::FolderEvents {

namespace {

// Streams by the identity of their watcher object. Watches are made and
// stopped on the main thread only, so the registry needs no lock.
QHash<const void*, FolderEventStream*>& registry() {
    static QHash<const void*, FolderEventStream*> streams;
    return streams;
}

} // namespace

Expected<bool, FolderEventsError> startWatching(const QStringList& paths, const void* object,
                                                Handler handler) {
    stopWatching(object);
    auto stream = std::make_unique<FolderEventStream>(std::move(handler));
    const auto started = stream->start(paths);
    if (!started)
        return started;
    registry().insert(object, stream.release());
    return true;
}

void stopWatching(const void* object) {
    FolderEventStream* stream = registry().take(object);
    if (!stream)
        return;
    // A handler that stops its own watch must not pull the stream from
    // under the loop that called it.
    if (stream->isDelivering())
        stream->deleteLater();
    else
        delete stream;
}

bool isContentChange(const FolderEventsEvent& event) {
    constexpr FolderEventsEventFlags contentChanges = itemCreated | itemRemoved | itemRenamed | itemModified;
    return event.flag && (*event.flag & contentChanges) != 0;
}

} // namespace quorlin::FolderEvents
