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

namespace {

std::optional<PFMSupportedPlatforms::LifeCycleStage> stageFromRawValue(QStringView rawValue) {
    for (const auto stage : PFMSupportedPlatforms::allStages) {
        if (PFMSupportedPlatforms::rawValue(stage) == rawValue)
            return stage;
    }
    return std::nullopt;
}

} // namespace

std::optional<PFMSupportedPlatforms::Models>
PFMSupportedPlatforms::readPlatformList(const plist::Dictionary& manifest) {
    return platformListFrom(manifest.value(QStringLiteral("pfm_quorlin_platforms")));
}

std::optional<PFMSupportedPlatforms::Models>
PFMSupportedPlatforms::platformListFrom(const plist::Value& value) {
    const plist::Array* list = value.array();
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
    // Every key of a manifest is read this way, most with none of these: one
    // search for the family's prefix beats a dozen lookups of made names.
    static const QString prefix = QStringLiteral("pfm_quorlin_");
    LifeCycleVersions versions;
    const auto& map = manifest.map();
    for (auto it = map.lowerBound(prefix); it != map.cend() && it.key().startsWith(prefix); ++it) {
        const QStringView name = QStringView(it.key()).mid(prefix.size());
        const qsizetype separator = name.indexOf(u'_');
        const auto model = separator > 0 ? modelFromRawValue(name.left(separator).toString()) : std::nullopt;
        const auto stage = separator > 0 ? stageFromRawValue(name.mid(separator + 1)) : std::nullopt;
        const auto version = it.value().toString();
        if (model && stage && version)
            versions[*model][*stage] = *version;
    }
    if (versions.empty())
        return std::nullopt;
    return versions;
}

} // namespace quorlin
