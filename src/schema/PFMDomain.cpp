#include "schema/PFMDomain.h"

#include "schema/ManifestFields.h"

#include <QSet>

#include <array>

namespace quorlin {

namespace {

constexpr std::array allCategories{PFMDomain::Category::root, PFMDomain::Category::system,
                                   PFMDomain::Category::application, PFMDomain::Category::user,
                                   PFMDomain::Category::unknown};

// Group label to the key names it holds, in ascending order of labels.
using Groups = QMap<QString, QStringList>;

// A group whose value isn't an array is left out; so are names that aren't strings.
Groups readGroups(const plist::Dictionary& manifest) {
    Groups groups;
    const plist::Dictionary* dictionary = manifest.dictionary(QStringLiteral("pfm_quorlin_groups"));
    if (!dictionary)
        return groups;
    for (const QString& label : dictionary->keys()) {
        const plist::Array* names = dictionary->array(label);
        if (!names)
            continue;
        QStringList& members = groups[label];
        for (const plist::Value& name : *names) {
            if (const auto string = name.toString())
                members.append(*string);
        }
    }
    return groups;
}

std::optional<QString> firstGroupHolding(const Groups& groups, const QString& keyName) {
    for (auto group = groups.cbegin(); group != groups.cend(); ++group) {
        if (group.value().contains(keyName))
            return group.key();
    }
    return std::nullopt;
}

QStringList labelOrder(const plist::Dictionary& manifest, const Groups& groups) {
    const plist::Array* order = manifest.array(QStringLiteral("pfm_quorlin_groups_order"));
    if (!order)
        return groups.keys();
    QStringList labels;
    for (const plist::Value& label : *order) {
        if (const auto string = label.toString())
            labels.append(*string);
    }
    return labels;
}

// "Other", or "Other 1", "Other 2"… when a group of the manifest already has that label.
QString freeOtherLabel(const Groups& groups) {
    const QString base = PFMDomain::otherGroupLabel();
    QString label = base;
    for (int suffix = 1; groups.contains(label); ++suffix)
        label = base + u' ' + QString::number(suffix);
    return label;
}

std::shared_ptr<const PFMKeyPrototype> firstPrototypeNamed(const PFMKeyPrototypeList& prototypes,
                                                           const QString& name) {
    for (const auto& prototype : prototypes) {
        if (prototype->name() == name)
            return prototype;
        if (auto found = firstPrototypeNamed(prototype->subkeys(), name))
            return found;
    }
    return nullptr;
}

} // namespace

std::shared_ptr<const PFMDomain> PFMDomain::make(const plist::Dictionary& manifest) {
    std::shared_ptr<PFMDomain> domain(new PFMDomain());
    if (!domain->readRequiredFields(manifest))
        return nullptr;
    domain->readPayloadOptions(manifest);
    const auto keys =
        PFMKeyPrototype::parseMutableSubkeyList(*manifest.array(QStringLiteral("pfm_subkeys")), false, 1);
    domain->readKeys(keys);
    domain->readCategory(manifest);
    domain->readAvailability(manifest);
    domain->m_requiresSupervision =
        manifest.boolean(QStringLiteral("pfm_quorlin_supervision_required")).value_or(false);
    domain->m_documentationURL =
        ManifestFields::url(manifest, QStringLiteral("pfm_quorlin_documentation_url"));
    domain->m_note = manifest.string(QStringLiteral("pfm_quorlin_note"));
    domain->assignDisplayGroups(manifest, keys);
    domain->findPayloadFileDataSubkeyPrototype();
    return domain;
}

QString PFMDomain::rawValue(Category category) {
    switch (category) {
    case Category::root:
        return QStringLiteral("root");
    case Category::system:
        return QStringLiteral("system");
    case Category::application:
        return QStringLiteral("application");
    case Category::user:
        return QStringLiteral("user");
    case Category::unknown:
        return QStringLiteral("unknown");
    }
    return {};
}

std::optional<PFMDomain::Category> PFMDomain::categoryFromRawValue(const QString& rawValue) {
    for (const Category category : allCategories) {
        if (PFMDomain::rawValue(category) == rawValue)
            return category;
    }
    return std::nullopt;
}

QString PFMDomain::otherGroupLabel() {
    return QStringLiteral("Other");
}

bool PFMDomain::readRequiredFields(const plist::Dictionary& manifest) {
    const auto title = manifest.string(QStringLiteral("pfm_title"));
    const auto description = manifest.string(QStringLiteral("pfm_description"));
    const auto domainString = manifest.string(QStringLiteral("pfm_domain"));
    const auto formatVersion = ManifestFields::integerValue(manifest, QStringLiteral("pfm_format_version"));
    const bool hasKeyList = manifest.array(QStringLiteral("pfm_subkeys")) != nullptr;
    if (!title || !description || !domainString || !formatVersion || !hasKeyList)
        return false;
    m_title = *title;
    // Unlike a key's description, the domain's is taken as it stands.
    m_descriptionline = *description;
    m_domainString = *domainString;
    m_formatVersion = *formatVersion;
    return true;
}

void PFMDomain::readPayloadOptions(const plist::Dictionary& manifest) {
    m_version = ManifestFields::integerValue(manifest, QStringLiteral("pfm_version"));
    m_targets = ManifestFields::array(manifest, QStringLiteral("pfm_targets"));
    if (const auto priority =
            ManifestFields::integerValue(manifest, QStringLiteral("pfm_quorlin_sort_priority")))
        m_sortPriority = quint64(*priority);
    m_singlePayload =
        ManifestFields::boolValue(manifest, QStringLiteral("pfm_quorlin_single_payload")).value_or(false);
    m_required = ManifestFields::isRequiredAlways(manifest);

    const auto fileBased =
        ManifestFields::boolValue(manifest, QStringLiteral("pfm_quorlin_file_based_payload"));
    m_fileBasedPayload = fileBased.value_or(false);
    if (fileBased) {
        m_payloadFileNameSubkeyName = manifest.string(QStringLiteral("pfm_quorlin_payload_file_name_subkey"));
        m_payloadFileDataSubkeyName = manifest.string(QStringLiteral("pfm_quorlin_payload_file_data_subkey"));
    }

    m_icon = manifest.data(QStringLiteral("pfm_quorlin_icon"));
    if (m_icon) {
        m_iconIsTemplate = ManifestFields::boolValue(manifest, QStringLiteral("pfm_quorlin_icon_is_template"))
                               .value_or(false);
    }
}

void PFMDomain::readKeys(const MutableKeyList& keys) {
    // Straight into the domain's lists, not through a list per key.
    PFMKeyPrototype::SearchStrings searchStrings;
    m_keyPrototypes.reserve(keys.size());
    for (const auto& key : keys) {
        m_keyPrototypes.append(key);
        if (!m_containsSupervisedOnlyKeys && key->requiresSupervisionDeep())
            m_containsSupervisedOnlyKeys = true;
        key->appendSearchStrings(searchStrings);
    }
    m_allKeyNames = std::move(searchStrings.names);
    m_allKeyTitles = std::move(searchStrings.titles);
    m_allKeyDescriptions = std::move(searchStrings.descriptions);
}

void PFMDomain::readCategory(const plist::Dictionary& manifest) {
    if (m_domainString.isEmpty()) {
        m_domainCategory = Category::root;
        return;
    }
    const auto word = manifest.string(QStringLiteral("pfm_quorlin_category"));
    m_domainCategory = word ? categoryFromRawValue(*word).value_or(Category::user) : Category::user;
}

void PFMDomain::readAvailability(const plist::Dictionary& manifest) {
    if (const plist::Dictionary* supportedOSes = manifest.dictionary(QStringLiteral("pfmx_supported_oses"))) {
        if (auto decoded = PFMXSupportedOSes::decode(*supportedOSes)) {
            m_supportedPlatforms = SupportedPlatforms::fromSupportedOSes(*decoded);
            m_supportedOSes = std::move(*decoded);
        }
    }
    // A manifest that says nothing about platforms counts as available on all four.
    if (!m_supportedPlatforms) {
        m_supportedPlatforms =
            SupportedPlatforms::make(PFMSupportedPlatforms::readPlatformList(manifest),
                                     PFMSupportedPlatforms::readLifeCycleVersions(manifest));
    }
}

void PFMDomain::assignDisplayGroups(const plist::Dictionary& manifest, const MutableKeyList& keys) {
    const Groups groups = readGroups(manifest);
    if (groups.size() < 2)
        return;

    QMap<QString, MutableKeyList> keysByLabel;
    MutableKeyList ungroupedKeys;
    for (const auto& key : keys) {
        if (!key->userVisible() || !key->name())
            continue;
        if (const auto label = firstGroupHolding(groups, *key->name()))
            keysByLabel[*label].append(key);
        else
            ungroupedKeys.append(key);
    }
    // Grouping a form into a single group would only add a needless selector.
    if (keysByLabel.size() + (ungroupedKeys.isEmpty() ? 0 : 1) < 2)
        return;

    QMap<int, QString> labelMap;
    QSet<QString> placedLabels;
    const auto place = [&](const QString& label, const MutableKeyList& members) {
        const int index = int(labelMap.size());
        labelMap.insert(index, label);
        placedLabels.insert(label);
        for (const auto& key : members)
            key->m_displayGroupIndex = index;
    };
    for (const QString& label : labelOrder(manifest, groups)) {
        if (keysByLabel.contains(label) && !placedLabels.contains(label))
            place(label, keysByLabel.value(label));
    }
    if (!ungroupedKeys.isEmpty())
        place(freeOtherLabel(groups), ungroupedKeys);
    // When the order names none of the groups that got keys and no key is
    // left over, nothing was placed: a selector without segments isn't a grouping.
    if (!labelMap.isEmpty())
        m_displayGroupsLabelMap = labelMap;
}

void PFMDomain::findPayloadFileDataSubkeyPrototype() {
    if (m_payloadFileDataSubkeyName)
        m_payloadFileDataSubkeyPrototype = firstPrototypeNamed(m_keyPrototypes, *m_payloadFileDataSubkeyName);
}

} // namespace quorlin
