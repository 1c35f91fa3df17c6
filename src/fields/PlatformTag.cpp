#include "fields/PlatformTag.h"

namespace quorlin {

namespace {

using Stage = PFMSupportedPlatforms::LifeCycleStage;

// Templates by which stages have a version: introduction, deprecation, removal.
QString toolTipTemplate(bool introduced, bool deprecated, bool removed) {
    if (introduced && deprecated && removed)
        return QStringLiteral(
            "Support for this %1 was introduced on %2 in version %3, deprecated in version %4, "
            "and removed in version %5.");
    if (introduced && deprecated)
        return QStringLiteral(
            "Support for this %1 was introduced on %2 in version %3 and deprecated in version %4.");
    if (introduced && removed)
        return QStringLiteral(
            "Support for this %1 was introduced on %2 in version %3 and removed in version %4.");
    if (introduced)
        return QStringLiteral("Support for this %1 was introduced on %2 in version %3.");
    if (deprecated && removed)
        return QStringLiteral(
            "Support for this %1 was deprecated on %2 in version %3 and removed in version %4.");
    // This one has always lacked its full stop.
    if (deprecated)
        return QStringLiteral("Support for this %1 was deprecated on %2 in version %3");
    if (removed)
        return QStringLiteral("Support for this %1 was removed from %2 in version %3.");
    return QStringLiteral("This %1 is supported on %2.");
}

} // namespace

PlatformTag::PlatformTag(std::optional<Model> model, std::optional<StageVersions> versions, bool onDomain)
    : m_model(model)
    , m_versions(std::move(versions))
    , m_onDomain(onDomain) {}

QList<PlatformTag> PlatformTag::tags(const SupportedPlatforms& platforms, bool onDomain) {
    QList<PlatformTag> tags;
    for (const SupportedPlatform& platform : platforms.platforms())
        tags.append(PlatformTag(platform.model, platform.versions, onDomain));
    return tags;
}

void PlatformTag::setModelLowercase(const QString& word) {
    m_model = PFMSupportedPlatforms::modelFromRawValue(word);
}

QString PlatformTag::text() const {
    return m_model ? PFMSupportedPlatforms::displayName(*m_model) : QString();
}

std::optional<QString> PlatformTag::toolTip() const {
    if (!m_model)
        return std::nullopt;
    const StageVersions versions = m_versions.value_or(StageVersions());
    QString tip = toolTipTemplate(versions.contains(Stage::introduction),
                                  versions.contains(Stage::deprecation), versions.contains(Stage::removal));
    tip = tip.arg(m_onDomain ? QStringLiteral("preferences domain") : QStringLiteral("preference key"),
                  PFMSupportedPlatforms::displayName(*m_model));
    // The stages in order, filling the places left after the first two.
    for (const Stage stage : PFMSupportedPlatforms::allStages) {
        if (const auto found = versions.find(stage); found != versions.end())
            tip = tip.arg(found->second);
    }
    return tip;
}

} // namespace quorlin
