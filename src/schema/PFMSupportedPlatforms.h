#pragma once

#include "plist/Value.h"

#include <QString>

#include <array>
#include <map>
#include <optional>
#include <set>

namespace quorlin {

// The vocabulary of availability, and the readers of the older generation of
// availability keys ("pfm_quorlin_platforms" and the life-cycle versions).
class PFMSupportedPlatforms {
public:
    enum class Model { iOS, macOS, tvOS, watchOS };
    enum class LifeCycleStage { introduction, deprecation, removal };

    using Models = std::set<Model>;
    using StageVersions = std::map<LifeCycleStage, QString>;
    using LifeCycleVersions = std::map<Model, StageVersions>;

    // The fixed order in which models are walked whenever the order matters.
    static constexpr std::array<Model, 4> allModels{Model::iOS, Model::macOS, Model::tvOS, Model::watchOS};
    static constexpr std::array<LifeCycleStage, 3> allStages{
        LifeCycleStage::introduction, LifeCycleStage::deprecation, LifeCycleStage::removal};

    // "ios", "macos", "tvos", "watchos": the words of the older manifest keys.
    static QString rawValue(Model model);
    static std::optional<Model> modelFromRawValue(const QString& rawValue);
    // "iOS", "macOS", "tvOS", "watchOS".
    static QString displayName(Model model);
    static QString rawValue(LifeCycleStage stage);

    // The models that "pfm_quorlin_platforms" names, its strings matched
    // case-insensitively; nothing when the key names none.
    static std::optional<Models> readPlatformList(const plist::Dictionary& manifest);
    // The same from the value of "pfm_quorlin_platforms" itself.
    static std::optional<Models> platformListFrom(const plist::Value& list);
    // The versions under "pfm_quorlin_<model>_<stage>"; a model without any
    // of its three keys is left out, and nothing when no model has one.
    static std::optional<LifeCycleVersions> readLifeCycleVersions(const plist::Dictionary& manifest);
};

} // namespace quorlin
