#pragma once

#include "fields/FieldDisplaySettings.h"
#include "model/Profile.h"
#include "validation/ValidationSettings.h"
#include "workspace/PFMSectionProperties.h"
#include "workspace/PayloadViewController.h"

#include <QList>
#include <QObject>

#include <memory>
#include <optional>
#include <vector>

namespace quorlin {

class PFMSection;

// The form of a section: one payload form for each payload of the section,
// and the sum of their errors for the side-bar's badge.
class PFMSectionViewController : public QObject {
    Q_OBJECT

public:
    PFMSectionViewController(PFMSection& section, const Profile::Pointer& profile);
    ~PFMSectionViewController() override;

    const std::vector<std::unique_ptr<PayloadViewController>>& payloadControllers() const {
        return m_payloadControllers;
    }
    PFMSection& section() const { return m_section; }
    Profile::Pointer profile() const { return m_profile.lock(); }
    const PFMSectionProperties& sectionProperties() const { return m_sectionProperties; }
    int errorCount() const { return m_errorCount; }
    int allCreatedPayloadIndex() const { return m_allCreatedPayloadIndex; }
    bool hasPayload(const Payload::Pointer& payload) const { return indexOfPayload(payload) >= 0; }
    int indexOfPayload(const Payload::Pointer& payload) const;

    // A new payload of the section in the profile, with its form at the end;
    // nothing when the section takes no more, or only files.
    PayloadViewController* addPayload();
    // The form of a payload the profile already holds.
    PayloadViewController& addPayloadForm(const Payload::Pointer& payload);
    PayloadViewController& insertPayloadForm(const Payload::Pointer& payload, int index);
    // Takes out the forms and their payloads from the profile. The section
    // drops the whole form when none is left (see PFMSection::removePayloads).
    void removePayloads(QList<int> indexes);

    void setValidationSettings(const std::weak_ptr<const ValidationSettings>& settings);
    void setFieldDisplaySettings(const FieldDisplaySettings& settings);
    // Revalidates every field, then counts.
    void recountErrors();

Q_SIGNALS:
    void errorCountChanged(int count);
    void payloadControllersChanged();

private:
    PayloadViewController& adopt(std::unique_ptr<PayloadViewController> form, int index);
    void nameNewPayload(PayloadViewController& form);
    void sumErrors();
    void updatePayloadsConfigured();

    PFMSection& m_section;
    std::weak_ptr<Profile> m_profile;
    std::vector<std::unique_ptr<PayloadViewController>> m_payloadControllers;
    PFMSectionProperties m_sectionProperties;
    int m_errorCount = 0;
    // Never goes down, so a name once given isn't given again.
    int m_allCreatedPayloadIndex = 0;
    std::weak_ptr<const ValidationSettings> m_validationSettings;
    std::optional<FieldDisplaySettings> m_fieldDisplaySettings;
};

} // namespace quorlin
