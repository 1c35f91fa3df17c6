#pragma once

#include "plist/Expected.h"
#include "plist/Value.h"

#include <QByteArray>
#include <QString>

namespace quorlin::plist {

class BinaryWriter {
public:
    // Fails, with the reason, only for a tree that holds a null value.
    static Expected<QByteArray, QString> write(const Value& root);
};

} // namespace quorlin::plist
