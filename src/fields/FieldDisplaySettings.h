#pragma once

#include "schema/PFMSupportedPlatforms.h"

#include <QString>

#include <optional>

namespace quorlin {

// What the forms of one window show and filter. The window owns the value
// and hands each form and field a copy, so a field can tell what changed by
// comparing the new copy with the one it holds.
struct FieldDisplaySettings {
    bool showFieldName = false;
    bool showSupervisionTag = false;
    bool showRequirementTag = false;
    bool showPlatformTag = false;
    bool showPlatformTagOnlyWhenDifferent = false;
    bool showPropertyDocumentationButton = false;
    bool showBooleanDescription = false;
    // Tighter rows, descriptions folded to their first line.
    bool compactDensity = false;
    std::optional<QString> highlightedTerm;
    // Every shown row must support each of these; empty means no filter.
    PFMSupportedPlatforms::Models filteredForPlatforms;
    // Only rows that write out.
    bool filteredForConfigured = false;

    friend bool operator==(const FieldDisplaySettings&, const FieldDisplaySettings&) = default;
};

} // namespace quorlin
