#pragma once

#include "plist/ParseError.h"

#include <QtGlobal>

#include <optional>

namespace quorlin::plist {

// The three encodings of a property list that the readers understand.
enum class Format { Xml, Binary, OpenStep };

// Limits that keep hostile input from exhausting the stack or memory.
struct ReadLimits {
    int maxDepth = 512; // nested arrays and dictionaries
    // A tree in memory takes several times the bytes it was read from, and no
    // profile, manifest or settings file comes near this.
    qint64 maxBytes = qint64(64) << 20;
};

// The refusal of input larger than the limits allow, before any of it is read.
inline std::optional<ParseError> sizeRefusal(qint64 size, const ReadLimits& limits) {
    if (size <= limits.maxBytes)
        return std::nullopt;
    return ParseError{QStringLiteral("property list of %1 MB is larger than the %2 MB that are read")
                          .arg((size + (1 << 20) - 1) >> 20)
                          .arg(limits.maxBytes >> 20),
                      -1, -1};
}

} // namespace quorlin::plist
