#pragma once

#include "plist/Expected.h"
#include "plist/ParseError.h"

#include <QByteArray>

namespace quorlin::plist {

// The step before the XML reader: brings XML text to UTF-8 as its
// declaration or byte-order mark says it is written (UTF-16, ISO-8859-1 and
// the other encodings the system knows), and refuses text that is not what it
// claims, invalid UTF-8 above all, rather than replacing what it can't read.
class XmlTextDecoder {
public:
    static Expected<QByteArray, ParseError> toUtf8(const QByteArray& bytes);
};

} // namespace quorlin::plist
