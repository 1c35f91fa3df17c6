#include "schema/SupportedPlatforms.h"

#include "plist/Utilities.h"

#include <algorithm>

namespace quorlin {

namespace {

std::optional<PFMSupportedPlatforms::StageVersions>
versionsOf(PFMSupportedPlatforms::Model model,
           const std::optional<PFMSupportedPlatforms::LifeCycleVersions>& lifeCycleVersions) {
    if (!lifeCycleVersions)
        return std::nullopt;
    const auto found = lifeCycleVersions->find(model);
    if (found == lifeCycleVersions->end())
        return std::nullopt;
    return found->second;
}

} // namespace

SupportedPlatforms SupportedPlatforms::make(const std::optional<Models>& models,
                                            const std::optional<LifeCycleVersions>& lifeCycleVersions) {
    SupportedPlatforms result;
    for (const Model model : PFMSupportedPlatforms::allModels) {
        if (models && !models->contains(model))
            continue;
        result.m_platforms.insert(SupportedPlatform{model, versionsOf(model, lifeCycleVersions)});
    }
    return result;
}

SupportedPlatforms SupportedPlatforms::fromSupportedOSes(const PFMXSupportedOSes& supportedOSes) {
    SupportedPlatforms result;
    for (const Model model : PFMSupportedPlatforms::allModels) {
        const PFMXSupportedOS* os = supportedOSes.supportedOS(model);
        if (os && !os->isNeverIntroduced())
            result.m_platforms.insert(SupportedPlatform{model, os->stageVersions()});
    }
    return result;
}

SupportedPlatforms SupportedPlatforms::combinedWithParent(const PFMXSupportedOSes& child,
                                                          const SupportedPlatforms& parent) {
    SupportedPlatforms result = parent;
    for (const Model model : PFMSupportedPlatforms::allModels) {
        const PFMXSupportedOS* os = child.supportedOS(model);
        if (os)
            result.replaceWithChild(model, os->stageVersions(), !os->isNeverIntroduced());
    }
    return result;
}

SupportedPlatforms
SupportedPlatforms::combinedWithParent(const std::optional<Models>& models,
                                       const std::optional<LifeCycleVersions>& lifeCycleVersions,
                                       const SupportedPlatforms& parent) {
    SupportedPlatforms result = parent;
    for (const Model model : PFMSupportedPlatforms::allModels) {
        const auto childVersions = versionsOf(model, lifeCycleVersions);
        const bool childSpeaks = models || childVersions;
        if (childSpeaks)
            result.replaceWithChild(model, childVersions, !models || models->contains(model));
    }
    return result;
}

void SupportedPlatforms::replaceWithChild(Model model, const std::optional<StageVersions>& childVersions,
                                          bool keep) {
    const auto existing =
        std::find_if(m_platforms.begin(), m_platforms.end(),
                     [model](const SupportedPlatform& platform) { return platform.model == model; });
    if (existing == m_platforms.end())
        return;
    std::optional<StageVersions> versions = existing->versions;
    m_platforms.erase(existing);
    if (!keep)
        return;
    if (childVersions) {
        StageVersions combined = versions.value_or(StageVersions{});
        for (const auto& [stage, version] : *childVersions)
            combined[stage] = version;
        versions = std::move(combined);
    }
    m_platforms.insert(SupportedPlatform{model, std::move(versions)});
}

bool SupportedPlatforms::contains(Model model) const {
    return platform(model) != nullptr;
}

std::optional<SupportedPlatforms::StageVersions> SupportedPlatforms::versions(Model model) const {
    const SupportedPlatform* found = platform(model);
    return found ? found->versions : std::nullopt;
}

std::optional<QString> SupportedPlatforms::versionOfStage(LifeCycleStage stage, Model model) const {
    const SupportedPlatform* found = platform(model);
    if (!found || !found->versions)
        return std::nullopt;
    const auto version = found->versions->find(stage);
    if (version == found->versions->end())
        return std::nullopt;
    return version->second;
}

bool SupportedPlatforms::isBeforeIntroduction(Model model, const QString& version) const {
    const auto introduction = versionOfStage(LifeCycleStage::introduction, model);
    return introduction && (version.isEmpty() || Utilities::compareVersions(version, *introduction) < 0);
}

bool SupportedPlatforms::hasReachedStage(Model model, const QString& version, LifeCycleStage stage) const {
    const auto stageVersion = versionOfStage(stage, model);
    return stageVersion && (version.isEmpty() || Utilities::compareVersions(*stageVersion, version) <= 0);
}

const SupportedPlatform* SupportedPlatforms::platform(Model model) const {
    for (const SupportedPlatform& candidate : m_platforms) {
        if (candidate.model == model)
            return &candidate;
    }
    return nullptr;
}

} // namespace quorlin
