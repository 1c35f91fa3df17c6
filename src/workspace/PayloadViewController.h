#pragma once

#include "fields/FieldDisplaySettings.h"
#include "fields/KeyValueWriter.h"
#include "model/Payload.h"
#include "validation/ValidationSettings.h"
#include "workspace/FormField.h"

#include <QList>
#include <QMap>
#include <QObject>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>
#include <set>
#include <vector>

namespace quorlin {

class PFMSectionViewController;

// The form of one payload: its rows in order, built once from the key tree
// and then only shown or hidden as filters, groups and rules change.
class PayloadViewController : public QObject {
    Q_OBJECT

public:
    // Instruments write through `writer`; without one, straight to the keys.
    PayloadViewController(PFMSectionViewController* sectionViewController, const Payload::Pointer& payload,
                          std::shared_ptr<KeyValueWriter> writer = {});
    ~PayloadViewController() override;

    Payload::Pointer payload() const { return m_payload.lock(); }
    const std::vector<FormField>& fieldViewControllers() const { return m_fields; }
    PreferenceKey::Pointer payloadDisplayNameKey() const { return m_payloadDisplayNameKey.lock(); }
    int errorCount() const { return m_errorCount; }
    bool isCollapsed() const { return m_isCollapsed; }
    void setCollapsed(bool collapsed);
    const std::optional<FieldDisplaySettings>& fieldDisplaySettings() const { return m_fieldDisplaySettings; }

    // Groups: the label map of the domain, empty when it has no group selector.
    const QMap<int, QString>& displayGroupsLabelMap() const { return m_displayGroupsLabelMap; }
    bool hasGroupSelector() const { return !m_displayGroupsLabelMap.isEmpty(); }
    int selectedGroup() const { return m_selectedGroup; }
    void selectGroup(int group);
    // The groups that hold a hit of the search term.
    const std::set<int>& groupBadges() const { return m_groupBadges; }

    // The header's title: hidden when the name is edited in its own row.
    bool isTitleHidden() const;
    bool isTitleEditable() const;
    QString title() const;
    bool hasCollapseButton() const;
    // The text of the notice of unfamiliar keys, or nothing without any.
    std::optional<QString> unfamiliarPropertiesNotice() const;
    // Held values of keys that no row shows (a dictionary shows as its
    // subkeys' rows, a rule may hide a row), one "PATH: TEXT" each; they
    // count as errors too.
    QStringList unshownHeldValues() const;
    PreferenceKey::KeyList unshownHeldValueKeys() const;
    bool isNoFieldsDisplayedShown() const { return m_noFieldsDisplayedShown; }

    void setFieldDisplaySettings(const FieldDisplaySettings& settings);
    void setValidationSettings(const std::weak_ptr<const ValidationSettings>& settings);
    bool shouldHide(const FormField& field) const;
    void updateVisibility(FormField& field);
    void updateAllVisibility();
    // The set-to-default operation on every row the platform filter shows.
    void restoreDefaults();
    // Revalidates every row, then counts.
    void recountErrors();

Q_SIGNALS:
    void errorCountChanged(int count);
    void visibilityChanged();

private:
    class KeyFollower;

    void buildFields(const Payload& payload);
    void addField(const PreferenceKey::Pointer& key);
    void addSigningField();
    QList<Payload::HeldPlace> unshownHeldPlaces() const;
    static bool hiddenByRule(const FormField& field);
    void validate(FormField& field);
    bool hiddenByPlatformFilter(const FormField& field) const;
    void applySearch(FormField& field, std::set<int>& groupsWithHit);
    void countErrors();
    // A key of the payload changed: rules and requirements may have moved.
    void followKeyChange();

    PFMSectionViewController* m_sectionViewController;
    std::weak_ptr<Payload> m_payload;
    std::vector<FormField> m_fields;
    std::weak_ptr<PreferenceKey> m_payloadDisplayNameKey;
    QMap<int, QString> m_displayGroupsLabelMap;
    int m_selectedGroup = 0;
    std::set<int> m_groupBadges;
    int m_errorCount = 0;
    bool m_isCollapsed = false;
    std::optional<FieldDisplaySettings> m_fieldDisplaySettings;
    bool m_suspendFieldVisibilityResets = false;
    bool m_noFieldsDisplayedShown = false;
    std::weak_ptr<const ValidationSettings> m_validationSettings;
    std::shared_ptr<KeyValueWriter> m_writer;
    std::shared_ptr<KeyFollower> m_keyFollower;
};

} // namespace quorlin
