#pragma once

#include "fields/FieldDisplaySettings.h"
#include "fields/PlatformTag.h"
#include "fields/TextRange.h"
#include "model/PreferenceKey.h"

#include <QList>
#include <QString>
#include <QUrl>

#include <optional>

namespace quorlin {

// The small print under a field: the property name, the "Required" and
// "Supervised only" tags, platform tags and a documentation button, each
// shown or not by the display settings and the key's state.
class FieldDetailsViewController {
public:
    explicit FieldDetailsViewController(PreferenceKey::Pointer key);

    const std::optional<FieldDisplaySettings>& fieldDisplaySettings() const { return m_fieldDisplaySettings; }
    // Re-evaluates every element.
    void setFieldDisplaySettings(const std::optional<FieldDisplaySettings>& settings);
    // Re-evaluates what depends on the key's state (its requirement).
    void update();

    static QString requiredTagText();
    static QString supervisedOnlyTagText();

    bool showsPropertyName() const { return m_showsPropertyName; }
    QString propertyName() const;
    bool showsRequiredTag() const { return m_showsRequiredTag; }
    bool showsSupervisedOnlyTag() const { return m_showsSupervisedOnlyTag; }
    const QList<TextRange>& highlightedTermMatchesSupervision() const { return m_supervisionMatches; }
    // Empty when no tag shows.
    const QList<PlatformTag>& platformTags() const { return m_platformTags; }
    bool showsDocumentationButton() const { return m_showsDocumentationButton; }
    std::optional<QUrl> documentationURL() const;
    bool allDetailsAreHidden() const { return m_allDetailsAreHidden; }

private:
    bool platformsDifferFromDomain() const;
    bool shouldShowPlatformTags() const;
    bool shouldShowDocumentationButton() const;

    PreferenceKey::Pointer m_key;
    std::optional<FieldDisplaySettings> m_fieldDisplaySettings;
    bool m_showsPropertyName = false;
    bool m_showsRequiredTag = false;
    bool m_showsSupervisedOnlyTag = false;
    QList<TextRange> m_supervisionMatches;
    QList<PlatformTag> m_platformTags;
    bool m_showsDocumentationButton = false;
    bool m_allDetailsAreHidden = true;
};

} // namespace quorlin
