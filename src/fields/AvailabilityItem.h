#pragma once

#include "schema/PFMSupportedPlatforms.h"

#include <QString>

#include <map>
#include <variant>

namespace quorlin {

// One row of the availability table of the information panel.
struct AvailabilityItem {
    using Model = PFMSupportedPlatforms::Model;
    // A version or a word, or a boolean the panel shows as a check mark.
    using Cell = std::variant<QString, bool>;

    QString qualifier;
    std::map<Model, Cell> values;
    // "Deprecated" and "Removed" stand out so that an end of life is seen.
    bool marksEndOfLife = false;

    friend bool operator==(const AvailabilityItem&, const AvailabilityItem&) = default;
};

} // namespace quorlin
