#include "fields/FieldDetailsViewController.h"

#include "model/Payload.h"

namespace quorlin {

FieldDetailsViewController::FieldDetailsViewController(PreferenceKey::Pointer key)
    : m_key(std::move(key)) {
    update();
}

QString FieldDetailsViewController::requiredTagText() {
    return QStringLiteral("Required");
}

QString FieldDetailsViewController::supervisedOnlyTagText() {
    return QStringLiteral("Supervised only");
}

void FieldDetailsViewController::setFieldDisplaySettings(
    const std::optional<FieldDisplaySettings>& settings) {
    m_fieldDisplaySettings = settings;
    update();
}

QString FieldDetailsViewController::propertyName() const {
    return m_key->name();
}

std::optional<QUrl> FieldDetailsViewController::documentationURL() const {
    return m_key->prototype().documentationURL();
}

void FieldDetailsViewController::update() {
    const auto& settings = m_fieldDisplaySettings;
    const PFMKeyPrototype& prototype = m_key->prototype();

    m_showsPropertyName = settings && settings->showFieldName;
    m_showsRequiredTag = m_key->required() && (!settings || settings->showRequirementTag);

    m_supervisionMatches.clear();
    if (prototype.requiresSupervision() && settings)
        m_supervisionMatches = TextRange::termMatches(supervisedOnlyTagText(), settings->highlightedTerm);
    // A search for "super" must be able to find the tag, so a hit shows it.
    m_showsSupervisedOnlyTag = prototype.requiresSupervision() &&
                               (!settings || settings->showSupervisionTag || !m_supervisionMatches.isEmpty());

    m_platformTags.clear();
    const auto platforms = m_key->supportedPlatforms();
    if (shouldShowPlatformTags() && platforms)
        m_platformTags = PlatformTag::tags(*platforms, false);

    m_showsDocumentationButton = shouldShowDocumentationButton();
    m_allDetailsAreHidden = !m_showsPropertyName && !m_showsRequiredTag && !m_showsSupervisedOnlyTag &&
                            m_platformTags.isEmpty() && !m_showsDocumentationButton;
}

// A key that says nothing of its platforms has the section's; telling them again
// under every such row would bury the few rows that really narrow them.
bool FieldDetailsViewController::platformsDifferFromDomain() const {
    const PFMKeyPrototype& prototype = m_key->prototype();
    const bool hasOwnPlatforms =
        prototype.supportedOSes() || prototype.supportedModels() || prototype.lifeCycleVersions();
    if (!hasOwnPlatforms)
        return false;
    const auto payload = m_key->owningPayload();
    const auto sectionPlatforms =
        payload ? payload->domainPrototype().supportedPlatforms() : std::optional<SupportedPlatforms>();
    return m_key->supportedPlatforms() != sectionPlatforms;
}

bool FieldDetailsViewController::shouldShowPlatformTags() const {
    const auto& settings = m_fieldDisplaySettings;
    if (!settings)
        return platformsDifferFromDomain();
    if (!settings->showPlatformTag)
        return false;
    if (settings->showPlatformTagOnlyWhenDifferent)
        return platformsDifferFromDomain();
    return true;
}

bool FieldDetailsViewController::shouldShowDocumentationButton() const {
    const auto& settings = m_fieldDisplaySettings;
    const auto& url = m_key->prototype().documentationURL();
    if (!settings || !settings->showPropertyDocumentationButton || !url)
        return false;
    const auto payload = m_key->owningPayload();
    return !payload || payload->domainPrototype().documentationURL() != url;
}

} // namespace quorlin
