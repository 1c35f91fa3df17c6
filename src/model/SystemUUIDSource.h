#pragma once

#include "model/UUIDSource.h"

namespace quorlin {

// Random (version 4) UUIDs in the platform's upper-case form.
class SystemUUIDSource : public UUIDSource {
public:
    QString makeUUIDString() override;
};

} // namespace quorlin
