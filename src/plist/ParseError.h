#pragma once

#include <QString>
#include <QtGlobal>

namespace quorlin::plist {

// Why a property list could not be read, and where: a line for text formats,
// a byte offset for binary ones (-1 where it does not apply).
struct ParseError {
    QString reason;
    qint64 line = -1;
    qint64 byteOffset = -1;

    // "reason (line N)" / "reason (byte N)", for messages that name a file.
    QString toString() const;
};

} // namespace quorlin::plist
