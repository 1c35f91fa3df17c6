#pragma once

#include <QString>

namespace quorlin {

// Where new payload UUIDs come from, so that tests can make them predictable.
class UUIDSource {
public:
    virtual ~UUIDSource() = default;
    // An upper-case UUID string of 36 characters.
    virtual QString makeUUIDString() = 0;
};

} // namespace quorlin
