#pragma once

#include "plist/Expected.h"
#include "plist/ParseError.h"
#include "plist/PlistFormat.h"
#include "plist/Value.h"

#include <QByteArray>

namespace quorlin::plist {

class XmlReader {
public:
    static Expected<Value, ParseError> read(const QByteArray& bytes, const ReadLimits& limits = {});
};

} // namespace quorlin::plist
