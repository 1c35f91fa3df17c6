#pragma once

#include "fields/FieldDisplaySettings.h"
#include "model/Profile.h"
#include "ui/SigningRowView.h"
#include "workspace/PFMSection.h"

#include <QPointer>
#include <QWidget>

class QVBoxLayout;

namespace quorlin {

class SectionFormView;

// The right side of a document window: the form of the selected section, or
// what stands in for one (an unfamiliar domain, a section not yet in the
// profile, nothing). It follows the section's form as it comes and goes.
class ContentView : public QWidget {
    Q_OBJECT

public:
    explicit ContentView(QWidget* parent = nullptr);
    ~ContentView() override;

    // nullptr: shows nothing.
    void setSection(PFMSection* section);
    PFMSection* section() const;
    void setFieldDisplaySettings(const FieldDisplaySettings& settings);
    const FieldDisplaySettings& fieldDisplaySettings() const { return m_settings; }
    // The profile whose unfamiliar payloads an unfamiliar section shows.
    void setProfile(const Profile::Pointer& profile);
    // Tells the signing row which identities have a trusted chain; without
    // it every identity reads as unverified.
    void setSigningIdentityTrust(SigningRowView::TrustCheck isTrusted);

    // Each payload of a section with a form as its raw property list instead.
    void setShowsPropertyList(bool shows);
    bool showsPropertyList() const { return m_showsPropertyList; }
    // Shows what the section holds now.
    void reload();

    // The form shown, or nothing when the section has none.
    SectionFormView* sectionFormView() const { return m_formView; }
    // What is shown now: the form, a stand-in, or nothing.
    QWidget* currentView() const { return m_current; }

    static QString notEnabledText();
    static QString addPayloadTitle();
    static QString unfamiliarDomainLabel();
    static QString unfamiliarDomainExplanation();

Q_SIGNALS:
    void addPayloadRequested(PFMSection* section);
    void removePayloadRequested(PFMSection* section, int payloadIndex);
    // The signing row chose another identity: an edit of the document.
    void saveSignedWithCommonNameEdited(PFMSection* section);
    // The user asks to drop a payload's unfamiliar keys: an edit for the history.
    void unfamiliarPropertiesRemoveRequested(PFMSection* section, const std::shared_ptr<Payload>& payload);
    // The raw editor of an unfamiliar payload (the `ordinal`-th of its type) offers an edit.
    // The raw editor of a payload a manifest describes offers an edit.
    void payloadDictionaryEdited(const std::shared_ptr<Payload>& payload, const plist::Dictionary& after);
    void unfamiliarPayloadEdited(PFMSection* section, const QString& payloadType, int ordinal,
                                 const plist::Dictionary& after);

private:
    void rebuild();
    QWidget* makeNotEnabledView(PFMSection& section);
    QWidget* makeUnfamiliarView(PFMSection& section);
    QWidget* makeFormView(PFMSection& section);
    QWidget* makePropertyListView(PFMSection& section);

    QPointer<PFMSection> m_section;
    std::weak_ptr<Profile> m_profile;
    FieldDisplaySettings m_settings;
    bool m_hasSettings = false;
    bool m_showsPropertyList = false;
    SigningRowView::TrustCheck m_isTrusted;
    QVBoxLayout* m_layout = nullptr;
    QWidget* m_current = nullptr;
    SectionFormView* m_formView = nullptr;
    QMetaObject::Connection m_sectionConnection;
};

} // namespace quorlin
