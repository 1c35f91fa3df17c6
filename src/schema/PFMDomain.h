#pragma once

#include "plist/Value.h"
#include "schema/PFMKeyPrototype.h"
#include "schema/PFMXSupportedOSes.h"
#include "schema/SupportedPlatforms.h"

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QUrl>

#include <memory>
#include <optional>

namespace quorlin {

// One preference manifest, parsed: the payload type it describes, the wording
// of its section, its top-level keys, and what search and the form derive
// from them. Built once and shared read-only, so an open document can keep
// its domains after the manifests reload.
class PFMDomain {
public:
    enum class Category { root, system, application, user, unknown };

    // Nothing unless "pfm_title", "pfm_description", "pfm_domain" (strings),
    // "pfm_format_version" (a number) and a "pfm_subkeys" array are all there.
    static std::shared_ptr<const PFMDomain> make(const plist::Dictionary& manifest);

    static QString rawValue(Category category);
    static std::optional<Category> categoryFromRawValue(const QString& rawValue);
    // The label of the group of keys that no group names.
    static QString otherGroupLabel();

    const QString& title() const { return m_title; }
    const QString& descriptionline() const { return m_descriptionline; }
    // The payload type; empty for the root payload of a profile.
    const QString& domainString() const { return m_domainString; }
    std::optional<qint64> version() const { return m_version; }
    qint64 formatVersion() const { return m_formatVersion; }
    bool required() const { return m_required; }
    bool singlePayload() const { return m_singlePayload; }
    quint64 sortPriority() const { return m_sortPriority; }
    bool fileBasedPayload() const { return m_fileBasedPayload; }
    const PFMKeyPrototypeList& keyPrototypes() const { return m_keyPrototypes; }
    const std::optional<plist::Array>& targets() const { return m_targets; }
    const std::optional<QString>& payloadFileNameSubkeyName() const { return m_payloadFileNameSubkeyName; }
    const std::optional<QString>& payloadFileDataSubkeyName() const { return m_payloadFileDataSubkeyName; }
    // Points into keyPrototypes' tree; null when there is no such key.
    const std::shared_ptr<const PFMKeyPrototype>& payloadFileDataSubkeyPrototype() const {
        return m_payloadFileDataSubkeyPrototype;
    }
    Category domainCategory() const { return m_domainCategory; }
    const std::optional<QByteArray>& icon() const { return m_icon; }
    bool iconIsTemplate() const { return m_iconIsTemplate; }
    const QStringList& allKeyNames() const { return m_allKeyNames; }
    const QStringList& allKeyTitles() const { return m_allKeyTitles; }
    const QStringList& allKeyDescriptions() const { return m_allKeyDescriptions; }
    const std::optional<QMap<int, QString>>& displayGroupsLabelMap() const { return m_displayGroupsLabelMap; }
    const std::optional<SupportedPlatforms>& supportedPlatforms() const { return m_supportedPlatforms; }
    const std::optional<PFMXSupportedOSes>& supportedOSes() const { return m_supportedOSes; }
    bool requiresSupervision() const { return m_requiresSupervision; }
    const std::optional<QUrl>& documentationURL() const { return m_documentationURL; }
    const std::optional<QString>& note() const { return m_note; }
    bool containsSupervisedOnlyKeys() const { return m_containsSupervisedOnlyKeys; }

private:
    using MutableKeyList = QList<std::shared_ptr<PFMKeyPrototype>>;

    PFMDomain() = default;

    bool readRequiredFields(const plist::Dictionary& manifest);
    void readPayloadOptions(const plist::Dictionary& manifest);
    void readKeys(const MutableKeyList& keys);
    void readCategory(const plist::Dictionary& manifest);
    void readAvailability(const plist::Dictionary& manifest);
    void assignDisplayGroups(const plist::Dictionary& manifest, const MutableKeyList& keys);
    void findPayloadFileDataSubkeyPrototype();

    QString m_title;
    QString m_descriptionline;
    QString m_domainString;
    std::optional<qint64> m_version;
    qint64 m_formatVersion = 0;
    bool m_required = false;
    bool m_singlePayload = false;
    quint64 m_sortPriority = 999;
    bool m_fileBasedPayload = false;
    PFMKeyPrototypeList m_keyPrototypes;
    std::optional<plist::Array> m_targets;
    std::optional<QString> m_payloadFileNameSubkeyName;
    std::optional<QString> m_payloadFileDataSubkeyName;
    std::shared_ptr<const PFMKeyPrototype> m_payloadFileDataSubkeyPrototype;
    Category m_domainCategory = Category::user;
    std::optional<QByteArray> m_icon;
    bool m_iconIsTemplate = false;
    QStringList m_allKeyNames;
    QStringList m_allKeyTitles;
    QStringList m_allKeyDescriptions;
    std::optional<QMap<int, QString>> m_displayGroupsLabelMap;
    std::optional<SupportedPlatforms> m_supportedPlatforms;
    std::optional<PFMXSupportedOSes> m_supportedOSes;
    bool m_requiresSupervision = false;
    std::optional<QUrl> m_documentationURL;
    std::optional<QString> m_note;
    bool m_containsSupervisedOnlyKeys = false;
};

} // namespace quorlin
