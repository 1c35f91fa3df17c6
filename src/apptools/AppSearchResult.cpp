#include "apptools/AppSearchResult.h"

namespace quorlin::apptools {

QString AppSearchResult::rawValue(ResultType type) {
    switch (type) {
    case ResultType::systemApp:
        return QStringLiteral("systemApp");
    case ResultType::storeApp:
        return QStringLiteral("storeApp");
    case ResultType::bundleId:
        return QStringLiteral("bundleId");
    }
    return {};
}

QString AppSearchResult::label(ResultType type) {
    switch (type) {
    case ResultType::systemApp:
        return QStringLiteral("System App");
    case ResultType::storeApp:
        return QStringLiteral("Store App");
    case ResultType::bundleId:
        return QStringLiteral("Bundle Identifier");
    }
    return {};
}

} // namespace quorlin::apptools
