#include "apptools/ChosenApp.h"

#include "apptools/AppBundle.h"

namespace quorlin::apptools {

std::optional<ChosenApp> ChosenApp::fromFile(const QString& path) {
    const auto bundle = AppBundle::create(path);
    const auto identifier = bundle ? bundle->bundleIdentifier() : std::nullopt;
    if (!identifier || identifier->isEmpty())
        return std::nullopt;
    return ChosenApp{*identifier, bundle->name(), bundle->icon(), bundle->codeRequirement(),
                     bundle->teamIdentifier()};
}

} // namespace quorlin::apptools
