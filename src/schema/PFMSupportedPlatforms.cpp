#include "schema/PFMSupportedPlatforms.h"

namespace quorlin {

QString PFMSupportedPlatforms::rawValue(Model model) {
    switch (model) {
    case Model::iOS:
        return QStringLiteral("ios");
    case Model::macOS:
        return QStringLiteral("macos");
    case Model::tvOS:
        return QStringLiteral("tvos");
    case Model::watchOS:
        return QStringLiteral("watchos");
    }
    return {};
}

std::optional<PFMSupportedPlatforms::Model>
PFMSupportedPlatforms::modelFromRawValue(const QString& rawValue) {
    for (const Model model : allModels) {
        if (PFMSupportedPlatforms::rawValue(model) == rawValue)
            return model;
    }
    return std::nullopt;
}

QString PFMSupportedPlatforms::displayName(Model model) {
    switch (model) {
    case Model::iOS:
        return QStringLiteral("iOS");
    case Model::macOS:
        return QStringLiteral("macOS");
    case Model::tvOS:
        return QStringLiteral("tvOS");
    case Model::watchOS:
        return QStringLiteral("watchOS");
    }
    return {};
}

QString PFMSupportedPlatforms::rawValue(LifeCycleStage stage) {
    switch (stage) {
    case LifeCycleStage::introduction:
        return QStringLiteral("introduction");
    case LifeCycleStage::deprecation:
        return QStringLiteral("deprecation");
    case LifeCycleStage::removal:
        return QStringLiteral("removal");
    }
    return {};
}

std::optional<PFMSupportedPlatforms::Models>
PFMSupportedPlatforms::readPlatformList(const plist::Dictionary& manifest) {
    const plist::Array* list = manifest.array(QStringLiteral("pfm_quorlin_platforms"));
    if (!list)
        return std::nullopt;
    Models models;
    for (const plist::Value& element : *list) {
        if (const auto word = element.toString()) {
            if (const auto model = modelFromRawValue(word->toLower()))
                models.insert(*model);
        }
    }
    if (models.empty())
        return std::nullopt;
    return models;
}

std::optional<PFMSupportedPlatforms::LifeCycleVersions>
PFMSupportedPlatforms::readLifeCycleVersions(const plist::Dictionary& manifest) {
    LifeCycleVersions versions;
    for (const Model model : allModels) {
        StageVersions stages;
        for (const LifeCycleStage stage : allStages) {
            const QString key = QStringLiteral("pfm_quorlin_") + rawValue(model) + u'_' + rawValue(stage);
            if (const auto version = manifest.string(key))
                stages[stage] = *version;
        }
        if (!stages.empty())
            versions[model] = std::move(stages);
    }
    if (versions.empty())
        return std::nullopt;
    return versions;
}

} // namespace quorlin
