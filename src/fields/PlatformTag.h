#pragma once

#include "schema/PFMSupportedPlatforms.h"
#include "schema/SupportedPlatforms.h"

#include <QList>
#include <QString>

#include <optional>

namespace quorlin {

// The small rounded label with a platform's name beside a section title or
// in a field's details row; its tooltip tells when the platform began,
// stopped or will stop supporting the domain or key.
class PlatformTag {
public:
    using Model = PFMSupportedPlatforms::Model;
    using StageVersions = PFMSupportedPlatforms::StageVersions;

    PlatformTag() = default;
    PlatformTag(std::optional<Model> model, std::optional<StageVersions> versions, bool onDomain);

    // One tag per platform of the set, in the set's fixed order.
    static QList<PlatformTag> tags(const SupportedPlatforms& platforms, bool onDomain);

    const std::optional<Model>& model() const { return m_model; }
    void setModel(std::optional<Model> model) { m_model = model; }
    // The lower-case word of the view resources ("macos", "watchos").
    void setModelLowercase(const QString& word);
    const std::optional<StageVersions>& versions() const { return m_versions; }
    bool onDomain() const { return m_onDomain; }

    // The platform's display name; empty without a model.
    QString text() const;
    // Nothing without a model.
    std::optional<QString> toolTip() const;

    friend bool operator==(const PlatformTag&, const PlatformTag&) = default;

private:
    std::optional<Model> m_model;
    std::optional<StageVersions> m_versions;
    bool m_onDomain = false;
};

} // namespace quorlin
