#pragma once

namespace quorlin::plist {

// The three encodings of a property list that the readers understand.
enum class Format { Xml, Binary, OpenStep };

// Limits that keep hostile input from exhausting the stack or memory.
struct ReadLimits {
    int maxDepth = 512; // nested arrays and dictionaries
};

} // namespace quorlin::plist
