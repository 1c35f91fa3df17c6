#pragma once

#include <QString>

namespace quorlin {

// Where the manifest repository stores live on disk.
class RepositoryStorePaths {
public:
    // <application data>/manifest-repositories
    static QString storeRoot();
};

} // namespace quorlin
