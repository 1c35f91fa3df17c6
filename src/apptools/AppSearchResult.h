#pragma once

#include <QList>
#include <QString>
#include <QUrl>

#include <optional>

namespace quorlin::apptools {

// One row of an app search: an operating-system app, an App Store app, or
// the typed text itself taken as an identifier no list knows.
struct AppSearchResult {
    enum class ResultType { systemApp, storeApp, bundleId };

    QString appName;
    QString bundleId;
    ResultType resultType = ResultType::bundleId;
    std::optional<QUrl> artworkURL;

    // "systemApp", "storeApp", "bundleId", as the rows have always stored them.
    static QString rawValue(ResultType type);
    // "System App", "Store App", "Bundle Identifier".
    static QString label(ResultType type);

    friend bool operator==(const AppSearchResult&, const AppSearchResult&) = default;
};

} // namespace quorlin::apptools
