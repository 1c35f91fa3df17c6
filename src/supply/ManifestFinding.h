#pragma once

#include <QString>

namespace quorlin {

// One contradiction or likely mistake in a manifest.
struct ManifestFinding {
    // The names from the top level down, joined by "."; an item of an array
    // without a name is "[N]". Empty for the manifest itself.
    QString keyPath;
    QString reason;

    friend bool operator==(const ManifestFinding&, const ManifestFinding&) = default;
};

} // namespace quorlin
