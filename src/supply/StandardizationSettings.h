#pragma once

#include "plist/Value.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace quorlin {

// What an updating repository's standardization is told. A store remembers
// the settings it was made with, and any difference forces a full new
// standardization, so every field that changes the output belongs here.
struct StandardizationSettings {
    // Hides the payload's common keys in every domain but the general one.
    bool hidePayloadTopLevelKeys = false;
    // Positions of domains in the section list; one entry may hold several
    // domains separated by ", ", which then share a position. An empty list
    // gives no domain a position, which is all that an absent one would do.
    QStringList sortOrder;
    bool scrubThirdPartyPlaceholders = false;
    std::optional<QStringList> iconSearchDirectories;
    // Support files for manifests written for other programs.
    std::optional<QString> supportSearchDirectory;
    // The program version that made the store.
    QString supportVersion;

    friend bool operator==(const StandardizationSettings&, const StandardizationSettings&) = default;

    // The dictionary kept in a store's "standardization-settings.plist".
    plist::Dictionary encoded() const;
    // Nothing when a field has the wrong class or the booleans are missing:
    // a store whose settings can't be read is standardized anew.
    static std::optional<StandardizationSettings> decoded(const plist::Value& value);
};

} // namespace quorlin
