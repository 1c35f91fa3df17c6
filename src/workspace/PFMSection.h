#pragma once

#include "fields/FieldDisplaySettings.h"
#include "fields/KeyValueWriter.h"
#include "model/Profile.h"
#include "schema/PFMDomain.h"
#include "schema/SupportedPlatforms.h"
#include "validation/ValidationSettings.h"
#include "workspace/PFMSectionProperties.h"

#include <QList>
#include <QMap>
#include <QObject>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>

namespace quorlin {

class PFMSectionViewController;

// One row of a window's side-bar: the domains of one title and category, a
// group title, or the payloads of a type that no manifest knows. Once the
// profile holds a payload of it, the section owns its form.
class PFMSection : public QObject {
    Q_OBJECT

public:
    enum class Kinds { domain, groupTitle, unfamiliar };
    using DomainPointer = std::shared_ptr<const PFMDomain>;

    // What came of a request to add a payload; the window acts on the last two.
    enum class AddPayloadResult { added, refused, fileNeeded, fileIncompatible };

    explicit PFMSection(const DomainPointer& domain);
    PFMSection(const QString& groupTitle, PFMDomain::Category category);
    // Nothing when the dictionary has no "PayloadType" string or no domain can be made of it.
    static std::unique_ptr<PFMSection> makeUnfamiliar(const plist::Dictionary& payload);
    ~PFMSection() override;

    void addDomain(const DomainPointer& domain);

    Kinds sectionKind() const { return m_sectionKind; }
    const PFMSectionProperties& sectionProperties() const { return m_sectionProperties; }
    const QMap<QString, DomainPointer>& domains() const { return m_domains; }
    quint64 sortPriority() const { return m_sortPriority; }
    const std::optional<SupportedPlatforms>& supportedPlatforms() const { return m_supportedPlatforms; }
    int payloadsConfigured() const { return m_payloadsConfigured; }
    void setPayloadsConfigured(int count);
    bool hasPayloadsConfigured() const;
    // The form, or nothing while the profile holds no payload of the section.
    PFMSectionViewController* sectionViewController() const { return m_sectionViewController.get(); }
    void clearSectionViewController();
    // The errors of the form; 0 without one. The side-bar's red badge.
    int errorCount() const;

    QString payloadsConfiguredString() const;
    QString sortingString() const;
    QStringList supportedPlatformStrings() const;
    QString supportedPlatformsString() const;
    QString domainsString() const;
    const QStringList& searchKeywords() const;
    bool supportsMacOS() const;
    bool supportsIOS() const;
    bool supportsTvOS() const;
    std::optional<QString> note() const;
    // "Supervision required on iOS and macOS", or without platforms when the
    // domains don't say where; nothing when no domain needs supervision.
    std::optional<QString> supervisionRequiredString() const;
    QStringList allowedFileExtensions() const;

    void setValidationSettings(const std::weak_ptr<const ValidationSettings>& settings);
    const std::weak_ptr<const ValidationSettings>& validationSettings() const { return m_validationSettings; }
    void setFieldDisplaySettings(const FieldDisplaySettings& settings);
    // The writer the instruments of the forms write through: the document's history.
    void setKeyValueWriter(const std::shared_ptr<KeyValueWriter>& writer);
    const std::shared_ptr<KeyValueWriter>& keyValueWriter() const { return m_keyValueWriter; }
    const std::optional<FieldDisplaySettings>& fieldDisplaySettings() const { return m_fieldDisplaySettings; }

    // Gives the form the profile's payloads of this section, at window set-up.
    void bind(const Profile::Pointer& profile);
    // A new payload, or of a file for a file-based section.
    AddPayloadResult addPayload(const Profile::Pointer& profile, const std::optional<QString>& filePath);
    // Follows payloads that the profile added by itself.
    void refresh(const Profile::Pointer& profile);
    // Takes out forms and their payloads; the form goes when none is left.
    void removePayloads(const QList<int>& indexes);
    // Puts a payload that was taken out back at its place in the form;
    // undo uses it. The profile must already hold it.
    void restorePayloadForm(const Profile::Pointer& profile, const Payload::Pointer& payload, int formIndex);
    // The domain a new payload of this section is made of.
    DomainPointer primaryDomain() const;

Q_SIGNALS:
    void payloadsConfiguredChanged(int count);
    void sectionViewControllerChanged();
    void errorCountChanged(int count);

private:
    void giveFormPayload(const Profile::Pointer& profile, const Payload::Pointer& payload);
    PFMSectionViewController& makeForm(const Profile::Pointer& profile,
                                       const std::optional<Payload::Pointer>& payload);
    AddPayloadResult addPayloadFromFile(const Profile::Pointer& profile, const QString& filePath);
    bool domainTakesFile(const PFMDomain& domain, const QString& filePath) const;

    std::unique_ptr<PFMSectionViewController> m_sectionViewController;
    PFMSectionProperties m_sectionProperties;
    QMap<QString, DomainPointer> m_domains;
    // In the order added, for the strings that list the domains.
    QStringList m_domainOrder;
    int m_payloadsConfigured = 0;
    quint64 m_sortPriority = 999;
    Kinds m_sectionKind = Kinds::domain;
    std::optional<SupportedPlatforms> m_supportedPlatforms;
    std::weak_ptr<const ValidationSettings> m_validationSettings;
    std::optional<FieldDisplaySettings> m_fieldDisplaySettings;
    std::shared_ptr<KeyValueWriter> m_keyValueWriter;
    mutable std::optional<QStringList> m_searchKeywords;
};

} // namespace quorlin
