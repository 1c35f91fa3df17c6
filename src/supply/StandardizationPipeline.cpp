#include "supply/StandardizationPipeline.h"

#include "supply/DomainMerger.h"
#include "supply/GenericSupport.h"
#include "supply/StoreFile.h"
#include "supply/SupportMerger.h"
#include "supply/ThirdPartyManifest.h"

#include <QFileInfo>
#include <QSet>

#include <algorithm>

namespace quorlin {

namespace {

const QString kDomainKey = QStringLiteral("pfm_domain");
const QString kLastModifiedKey = QStringLiteral("pfm_last_modified");
const QString kTitleKey = QStringLiteral("pfm_title");
const QString kCategoryKey = QStringLiteral("pfm_quorlin_category");
const QString kGeneralPayloadFileName = QStringLiteral("Configuration");
const QString kApplePrefix = QStringLiteral("com.apple");

} // namespace

StandardizationPipeline::StandardizationPipeline(UpdatingManifestRepository& repository)
    : m_repository(repository) {}

StandardizationPipeline::Result StandardizationPipeline::run(const QStringList& originals) {
    // Every original is read, not only the changed ones: a change to one
    // file of a domain needs its siblings for the merge.
    QMap<QString, plist::Dictionary> all;
    for (auto& [path, manifest] : ManifestRepository::readManifests(m_repository.manifestFiles())) {
        const QString canonical = UpdatingManifestRepository::canonicalPath(path);
        if (all.contains(canonical))
            qFatal("Duplicate values for key: '%s'", qUtf8Printable(canonical));
        all.insert(canonical, std::move(manifest));
    }

    Result result;
    QMap<QString, QString> domains;
    for (auto it = all.cbegin(); it != all.cend(); ++it) {
        if (const auto domain = it->string(kDomainKey))
            domains.insert(it.key(), *domain);
        if (const auto modified = it->date(kLastModifiedKey))
            result.lastModified.insert(it.key(), *modified);
    }

    const GenericSupport support = genericSupport();
    for (StandardizationItem& item : items(originals, all, domains)) {
        merge(item);
        finish(item, support);
        if (const auto written = write(item.manifestToStandardize)) {
            for (const auto& [original, manifest] : item.originalManifests)
                result.standardizedFiles.insert(original, *written);
        }
    }
    return result;
}

QList<StandardizationItem> StandardizationPipeline::items(const QStringList& originals,
                                                          const QMap<QString, plist::Dictionary>& all,
                                                          const QMap<QString, QString>& domains) {
    QStringList pending;
    for (const QString& original : originals) {
        const QString canonical = UpdatingManifestRepository::canonicalPath(original);
        if (domains.contains(canonical) && !pending.contains(canonical))
            pending.append(canonical);
    }
    const bool inProfileManifestsLayout = m_repository.isProfileManifestsRepository();

    QList<StandardizationItem> items;
    while (!pending.isEmpty()) {
        const QString taken = pending.takeFirst();
        const QString& domain = domains[taken];
        StandardizationItem item;
        item.category = category(taken, inProfileManifestsLayout);
        for (auto it = domains.cbegin(); it != domains.cend(); ++it) {
            if (it.value() != domain)
                continue;
            item.originalManifests.append({it.key(), all[it.key()]});
            // Each domain is processed once, whichever of its originals changed.
            pending.removeAll(it.key());
        }
        items.append(std::move(item));
    }
    return items;
}

void StandardizationPipeline::merge(StandardizationItem& item) {
    if (item.originalManifests.isEmpty())
        return;
    if (item.originalManifests.size() == 1) {
        item.manifestToStandardize = item.originalManifests.first().second;
        return;
    }
    std::sort(item.originalManifests.begin(), item.originalManifests.end(), isOrderedBefore);
    QList<plist::Dictionary> sorted;
    for (const auto& [path, manifest] : item.originalManifests)
        sorted.append(manifest);
    item.manifestToStandardize = DomainMerger::merge(sorted);
}

void StandardizationPipeline::finish(StandardizationItem& item, const GenericSupport& genericSupport) const {
    plist::Dictionary& manifest = item.manifestToStandardize;
    if (ThirdPartyManifest::isThirdParty(manifest))
        manifest = ThirdPartyManifest::convert(manifest);

    if (item.category && !manifest.contains(kCategoryKey))
        manifest.insert(kCategoryKey, StandardizationItem::rawValue(*item.category));

    const auto& settings = m_repository.standardizationSettings();
    const auto domain = manifest.string(kDomainKey);
    if (settings && settings->supportSearchDirectory && domain) {
        if (const auto support = SupportMerger::support(*domain, {*settings->supportSearchDirectory}))
            manifest = SupportMerger::mergeSupport(manifest, *support);
    }

    genericSupport.apply(manifest);
}

std::optional<QString> StandardizationPipeline::write(const plist::Dictionary& manifest) const {
    const auto domain = manifest.string(kDomainKey);
    if (!domain)
        return std::nullopt;
    // A domain can hold anything, "/" and ".." included; what would land
    // outside the folder is not written at all.
    const auto file = m_repository.resolveStandardized(standardizedFileName(*domain));
    if (!file || !StoreFile::write(*file, manifest))
        return std::nullopt;
    return file;
}

GenericSupport StandardizationPipeline::genericSupport() const {
    const auto& settings = m_repository.standardizationSettings();
    if (!settings)
        return GenericSupport();
    return GenericSupport(settings->iconSearchDirectories, settings->scrubThirdPartyPlaceholders,
                          settings->hidePayloadTopLevelKeys, settings->sortOrder);
}

std::optional<StandardizationItem::Category>
StandardizationPipeline::category(const QString& original, bool isProfileManifestsRepository) {
    if (!isProfileManifestsRepository)
        return std::nullopt;
    // The root counts as a component, as in a file URL's path.
    const QStringList components = original.split(u'/', Qt::SkipEmptyParts);
    if (components.size() + 1 < 3)
        return std::nullopt;
    const QString& folder = components[components.size() - 2];
    if (folder == QStringLiteral("ManifestsApple"))
        return StandardizationItem::Category::system;
    // The Apple apps' preferences count as applications, just like third parties'.
    if (folder == QStringLiteral("ManagedPreferencesApple") ||
        folder == QStringLiteral("ManagedPreferencesApplications"))
        return StandardizationItem::Category::application;
    return std::nullopt;
}

bool StandardizationPipeline::isOrderedBefore(const Original& a, const Original& b) {
    const auto titleA = a.second.string(kTitleKey);
    const auto titleB = b.second.string(kTitleKey);
    if (titleA && titleB && *titleA != *titleB)
        return *titleA < *titleB;
    const QString nameA = QFileInfo(a.first).fileName();
    const QString nameB = QFileInfo(b.first).fileName();
    if (nameA != nameB)
        return nameA < nameB;
    return a.first < b.first;
}

QString StandardizationPipeline::standardizedFileName(const QString& domain) {
    if (domain.isEmpty())
        return kGeneralPayloadFileName + QStringLiteral(".plist");
    if (domain.startsWith(u'.'))
        return kApplePrefix + domain + QStringLiteral(".plist");
    return domain + QStringLiteral(".plist");
}

} // namespace quorlin
