#pragma once

#include "plist/Expected.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

namespace quorlin {

// What happened to an item below a watched folder. The values are the
// macOS file-system event flags, so the filter that decides what is worth
// a refresh reads the same everywhere.
enum FolderEventsEventFlag : quint32 {
    none = 0x0,
    mustScanSubDirs = 0x1,
    rootChanged = 0x20,
    itemCreated = 0x100,
    itemRemoved = 0x200,
    itemInodeMetaMod = 0x400,
    itemRenamed = 0x800,
    itemModified = 0x1000,
    itemXattrMod = 0x8000,
    itemIsFile = 0x10000,
    itemIsDir = 0x20000,
};
using FolderEventsEventFlags = quint32;

struct FolderEventsEvent {
    QString path;
    std::optional<FolderEventsEventFlags> flag;
    std::optional<quint64> ID;
};

struct FolderEventsError {
    enum class Code { cannotCreateStream, cannotStartStream };
    Code code;
    std::optional<QString> message;
};

// Watches folders recursively for as long as the watcher object lives in
// the registry; events arrive on the main thread, one call per event.
namespace FolderEvents {

using Handler = std::function<void(const FolderEventsEvent&)>;

// Replaces any watch the object had. The object is only a key: it is
// never called and must stop its watch before it goes away.
Expected<bool, FolderEventsError> startWatching(const QStringList& paths, const void* object,
                                                Handler handler);
void stopWatching(const void* object);

// Only creation, removal, renaming and modification change what a folder
// of manifests holds; metadata changes alone are not worth a refresh.
bool isContentChange(const FolderEventsEvent& event);

} // namespace FolderEvents

} // namespace quorlin
