#pragma once

#include "schema/PFMSupportedPlatforms.h"
#include "schema/PFMXSupportedOSes.h"
#include "schema/SupportedPlatform.h"

#include <QString>

#include <optional>
#include <set>

namespace quorlin {

// Where a domain or key exists, and from which version to which: the one
// form of availability that validation and the platform tags read.
class SupportedPlatforms {
public:
    using Model = PFMSupportedPlatforms::Model;
    using Models = PFMSupportedPlatforms::Models;
    using LifeCycleStage = PFMSupportedPlatforms::LifeCycleStage;
    using StageVersions = PFMSupportedPlatforms::StageVersions;
    using LifeCycleVersions = PFMSupportedPlatforms::LifeCycleVersions;

    SupportedPlatforms() = default;
    explicit SupportedPlatforms(std::set<SupportedPlatform> platforms)
        : m_platforms(std::move(platforms)) {}

    // From the older keys: one platform for each model (all four when no
    // models are given), with that model's life-cycle versions if any.
    static SupportedPlatforms make(const std::optional<Models>& models,
                                   const std::optional<LifeCycleVersions>& lifeCycleVersions);
    // From the extended format alone: each platform that has an entry and
    // whose introduction isn't "n/a".
    static SupportedPlatforms fromSupportedOSes(const PFMXSupportedOSes& supportedOSes);

    // A child's availability narrowed to its parent's: a platform the parent
    // lacks never comes back, "n/a" takes one away, and a platform the child
    // says nothing about keeps the parent's entry. Where both give a version
    // for one stage the child's wins, being the more specific statement.
    static SupportedPlatforms combinedWithParent(const PFMXSupportedOSes& child,
                                                 const SupportedPlatforms& parent);
    // The same for the older keys. A platform list restricts: models it
    // doesn't name are taken away. Without a list, the child speaks only
    // about the models it gives versions for.
    static SupportedPlatforms combinedWithParent(const std::optional<Models>& models,
                                                 const std::optional<LifeCycleVersions>& lifeCycleVersions,
                                                 const SupportedPlatforms& parent);

    const std::set<SupportedPlatform>& platforms() const { return m_platforms; }
    bool contains(Model model) const;
    // The stage versions of a model; nothing when the model is absent or has none.
    std::optional<StageVersions> versions(Model model) const;
    std::optional<QString> versionOfStage(LifeCycleStage stage, Model model) const;

    // An empty version stands for the lowest possible target, so both tests
    // answer true whenever the model has the stage.
    bool isBeforeIntroduction(Model model, const QString& version) const;
    bool hasReachedStage(Model model, const QString& version, LifeCycleStage stage) const;

    friend bool operator==(const SupportedPlatforms&, const SupportedPlatforms&) = default;

private:
    const SupportedPlatform* platform(Model model) const;
    // Removes the parent's entry for the model and, unless `keep` is false,
    // puts back one whose versions are the parent's overlaid by the child's.
    void replaceWithChild(Model model, const std::optional<StageVersions>& childVersions, bool keep);

    std::set<SupportedPlatform> m_platforms;
};

} // namespace quorlin
