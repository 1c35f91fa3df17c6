#pragma once

#include "plist/Expected.h"
#include "plist/Value.h"

#include <QString>

#include <optional>

namespace quorlin {

// What a refresh did to one domain's standardized file, kept until the
// domains are reloaded so that the update report can list it.
struct UpdateResultsItem {
    enum class UpdateStatuses { updated = 0, removed = 1 };

    struct DecodingError {
        QString message;
    };

    UpdateStatuses status = UpdateStatuses::updated;
    // The standardized file's name without its extension.
    QString domain;
    // The newest content modification date of the domain's originals.
    std::optional<plist::Date> fileModificationDate;
    // The newest "pfm_last_modified" among the originals.
    std::optional<plist::Date> manifestModificationDate;

    friend bool operator==(const UpdateResultsItem&, const UpdateResultsItem&) = default;

    static QString rawValue(UpdateStatuses status);

    plist::Dictionary encoded() const;
    static Expected<UpdateResultsItem, DecodingError> decoded(const plist::Value& value);
};

} // namespace quorlin
