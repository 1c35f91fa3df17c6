#pragma once

#include "plist/Value.h"

#include <QByteArray>

#include <optional>

namespace quorlin::apptools {

// Reads the DER form of entitlements that newer signatures carry beside, or
// instead of, the XML property list: an application-16 wrapper holding a
// version and a context-16 dictionary of key and value pairs, whose values
// are booleans, integers, UTF-8 strings, sequences (arrays) and nested
// dictionaries. Lengths are checked against what remains; nesting is bounded.
class DerEntitlements {
public:
    static std::optional<plist::Dictionary> decode(const QByteArray& der);
};

} // namespace quorlin::apptools
