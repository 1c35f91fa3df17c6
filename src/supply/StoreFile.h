#pragma once

#include "plist/Value.h"

#include <QString>

#include <optional>

namespace quorlin {

// The files of a repository store: XML property lists, each written whole
// or not at all, so that an interrupted write leaves the previous file.
class StoreFile {
public:
    // Answers whether the file now holds the value.
    static bool write(const QString& path, const plist::Value& root);
    // Nothing for a file that is missing, unreadable or not a property list.
    static std::optional<plist::Value> read(const QString& path);
};

} // namespace quorlin
