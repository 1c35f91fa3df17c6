#pragma once

#include "plist/Value.h"
#include "supply/UpdateResultsItem.h"

#include <QList>

#include <optional>

namespace quorlin {

// The results of the last refresh that changed anything, kept in the store
// so the update report can be shown again after a restart.
struct LastUpdates {
    plist::Date updateTime;
    QList<UpdateResultsItem> updateResultsItems;

    plist::Dictionary encoded() const;
    // Nothing when the value isn't one, or any of its items fails.
    static std::optional<LastUpdates> decoded(const plist::Value& value);
};

} // namespace quorlin
