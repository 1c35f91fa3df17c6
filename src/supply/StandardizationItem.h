#pragma once

#include "plist/Value.h"

#include <QList>
#include <QString>

#include <optional>
#include <utility>

namespace quorlin {

// One domain on its way to the standard form: all its originals, the
// manifest being built from them, and the category that the folder of the
// original that called for the work gives.
struct StandardizationItem {
    enum class Category { system, application, user };

    // Original path and tree, in the order the merge wants them.
    QList<std::pair<QString, plist::Dictionary>> originalManifests;
    plist::Dictionary manifestToStandardize;
    std::optional<Category> category;

    // The string stored under "pfm_quorlin_category".
    static QString rawValue(Category category) {
        switch (category) {
        case Category::system:
            return QStringLiteral("system");
        case Category::application:
            return QStringLiteral("application");
        case Category::user:
            return QStringLiteral("user");
        }
        return {};
    }
};

} // namespace quorlin
