#pragma once

#include "plist/Expected.h"
#include "plist/Value.h"
#include "schema/PFMXDecodingError.h"
#include "schema/PFMXSharedIPad.h"

#include <QString>

#include <optional>

namespace quorlin {

// How a payload behaves under User Enrollment ("pfmx_user_enrollment").
struct PFMXUserEnrollment {
    using Mode = PFMXSharedIPad::Mode;

    Mode mode = Mode::allowed;
    std::optional<QString> behavior;

    // "pfmx_mode" is required; any value of the wrong type fails the record.
    static Expected<PFMXUserEnrollment, PFMXDecodingError> decode(const plist::Dictionary& dictionary,
                                                                  const QString& codingPath = {});

    friend bool operator==(const PFMXUserEnrollment&, const PFMXUserEnrollment&) = default;
};

} // namespace quorlin
