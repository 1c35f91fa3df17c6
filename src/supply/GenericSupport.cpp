#include "supply/GenericSupport.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <utility>

namespace quorlin {

namespace {

const QString subkeysKey = QStringLiteral("pfm_subkeys");
const QString placeholderKey = QStringLiteral("pfm_quorlin_value_placeholder");
const QString userVisibleKey = QStringLiteral("pfm_quorlin_user_visible");

// Sample values of the public project's authoring tool, and the neutral
// samples shown instead.
const QList<std::pair<QString, QString>>& placeholderReplacements() {
    static const QList<std::pair<QString, QString>> replacements = {
        {QStringLiteral("com.placeholder.ManifestAuthorTool"),
         QStringLiteral("com.domainname.applicationname")},
        {QStringLiteral("Z9PLCHLDR0"), QStringLiteral("A1B2C3D4E5")},
    };
    return replacements;
}

} // namespace

GenericSupport::GenericSupport(std::optional<QStringList> iconSearchDirectories,
                               bool scrubThirdPartyPlaceholders, bool hidePayloadTopLevelKeys,
                               const std::optional<QStringList>& sortOrder)
    : m_iconSearchDirectories(std::move(iconSearchDirectories))
    , m_scrubThirdPartyPlaceholders(scrubThirdPartyPlaceholders)
    , m_hidePayloadTopLevelKeys(hidePayloadTopLevelKeys)
    , m_sortOrder(processSortOrder(sortOrder)) {}

std::optional<GenericSupport::SortOrder>
GenericSupport::processSortOrder(const std::optional<QStringList>& sortOrder) {
    if (!sortOrder)
        return std::nullopt;
    SortOrder positions;
    for (qsizetype position = 0; position < sortOrder->size(); ++position) {
        const QString& entry = sortOrder->at(position);
        if (entry.isEmpty()) {
            positions.insert(QString(), position);
            continue;
        }
        for (const QString& part : entry.split(QLatin1Char(',')))
            positions.insert(part.trimmed(), position);
    }
    return positions;
}

const QStringList& GenericSupport::hiddenTopLevelKeyNames() {
    static const QStringList names = {
        QStringLiteral("PayloadOrganization"), QStringLiteral("PayloadDescription"),
        QStringLiteral("PayloadDisplayName"),  QStringLiteral("PayloadUUID"),
        QStringLiteral("PayloadIdentifier"),   QStringLiteral("PayloadVersion"),
        QStringLiteral("PayloadType"),
    };
    return names;
}

QString GenericSupport::generalManifestIconName() {
    return QStringLiteral("com.harvect.QuorlinProfileEditor.resources.generalmanifesticon");
}

void GenericSupport::apply(plist::Dictionary& manifest) const {
    const auto domain = manifest.string(QStringLiteral("pfm_domain"));
    if (!domain)
        return;
    if (const auto icon = iconData(*domain))
        manifest.insert(QStringLiteral("pfm_quorlin_icon"), *icon);
    if (m_sortOrder && m_sortOrder->contains(*domain))
        manifest.insert(QStringLiteral("pfm_quorlin_sort_priority"), m_sortOrder->value(*domain));
    plist::Value* subkeys = manifest.find(subkeysKey);
    plist::Array* keys = subkeys ? subkeys->mutableArray() : nullptr;
    if (!keys)
        return;
    // The general payload's own keys are what its form is for.
    if (m_hidePayloadTopLevelKeys && !domain->isEmpty())
        hideTopLevelKeys(*keys);
    scrub(*keys);
}

std::optional<QByteArray> GenericSupport::iconData(const QString& domain) const {
    if (!m_iconSearchDirectories || domain.contains(QLatin1Char('/')))
        return std::nullopt;
    const QString fileName = (domain.isEmpty() ? generalManifestIconName() : domain) + QStringLiteral(".png");
    for (const QString& directory : *m_iconSearchDirectories) {
        const QString path = QDir(directory).filePath(fileName);
        if (!QFileInfo(path).isFile())
            continue;
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            return std::nullopt;
        return file.readAll();
    }
    return std::nullopt;
}

void GenericSupport::scrub(plist::Array& keys, int depth) const {
    if (!m_scrubThirdPartyPlaceholders || depth >= maximumDepth)
        return;
    for (plist::Value& element : keys) {
        plist::Dictionary* key = element.mutableDictionary();
        if (!key)
            continue;
        if (const auto placeholder = key->string(placeholderKey)) {
            for (const auto& [sample, neutral] : placeholderReplacements())
                if (*placeholder == sample)
                    key->insert(placeholderKey, neutral);
        }
        plist::Value* subkeys = key->find(subkeysKey);
        if (plist::Array* children = subkeys ? subkeys->mutableArray() : nullptr)
            scrub(*children, depth + 1);
    }
}

void GenericSupport::hideTopLevelKeys(plist::Array& keys) const {
    for (plist::Value& element : keys) {
        const plist::Dictionary* key = element.dictionary();
        if (!key)
            continue;
        const auto name = key->string(QStringLiteral("pfm_name"));
        if (!name || !hiddenTopLevelKeyNames().contains(*name) || key->boolean(userVisibleKey) == true)
            continue;
        element.mutableDictionary()->insert(userVisibleKey, false);
    }
}

} // namespace quorlin
