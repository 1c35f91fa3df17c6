#include "supply/UpdatingManifestRepository.h"

#include "supply/RepositoryStorePaths.h"
#include "supply/StandardizationPipeline.h"
#include "supply/StoreFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>

#include <algorithm>
#include <cmath>

namespace quorlin {

namespace {

const QString kModificationIndexFile = QStringLiteral("modification-index.plist");
const QString kStandardizationSettingsFile = QStringLiteral("standardization-settings.plist");
const QString kStandardizedFolder = QStringLiteral("standardized");
const QString kProfileManifestsFolder = QStringLiteral("Manifests");

// Dates go through the plist with whole seconds; a second of slack keeps
// that rounding from reading as a change.
constexpr double kModificationTimeSlack = 1.0;

std::optional<plist::Date> contentModificationDate(const QString& path) {
    const QDateTime modified = QFileInfo(path).fileTime(QFileDevice::FileModificationTime);
    if (!modified.isValid())
        return std::nullopt;
    return plist::Date::fromDateTime(modified);
}

template <typename Dates>
std::optional<plist::Date> newest(const Dates& dates) {
    std::optional<plist::Date> newest;
    for (const plist::Date& date : dates) {
        if (!newest || date.secondsSinceReferenceDate > newest->secondsSinceReferenceDate)
            newest = date;
    }
    return newest;
}

std::optional<QString> resolveInside(const QString& directory, const QString& relativePath) {
    const QString path = UpdatingManifestRepository::canonicalPath(
        QDir::isAbsolutePath(relativePath) ? relativePath : directory + u'/' + relativePath);
    if (!RepositoryStorePaths::isInside(path, directory))
        return std::nullopt;
    return path;
}

} // namespace

UpdatingManifestRepository::UpdatingManifestRepository(const QString& root, const QString& originals,
                                                       std::optional<StandardizationSettings> settings)
    : ManifestRepository(canonicalPath(root) + u'/' + kStandardizedFolder)
    , m_settings(std::move(settings))
    , m_root(canonicalPath(root))
    , m_originals(canonicalPath(originals)) {}

UpdatingManifestRepository::~UpdatingManifestRepository() = default;

QString UpdatingManifestRepository::modificationIndexPath() const {
    return m_root + u'/' + kModificationIndexFile;
}

QString UpdatingManifestRepository::standardizationSettingsPlistPath() const {
    return m_root + u'/' + kStandardizationSettingsFile;
}

bool UpdatingManifestRepository::openStore() {
    if (!QDir().mkpath(m_root) || !QDir().mkpath(standardizedManifestsDirectory()))
        return false;
    processOriginals();
    reloadManifests();
    return true;
}

bool UpdatingManifestRepository::isProfileManifestsRepository() {
    if (!m_isProfileManifestsRepository)
        m_isProfileManifestsRepository = isProfileManifestsRepositoryValue();
    return *m_isProfileManifestsRepository;
}

bool UpdatingManifestRepository::isProfileManifestsRepositoryValue() {
    return false;
}

void UpdatingManifestRepository::checkForUpdates() {}

QStringList UpdatingManifestRepository::processOriginals() {
    const QList<ModificationIndexItem> index = loadModificationIndex();
    const bool settingsChanged = haveSettingsChanged();
    const Changes changes = detectChanges(settingsChanged, index);
    if (changes.toStandardize.isEmpty() && changes.toDelete.isEmpty())
        return {};

    deleteFiles(changes.toDelete);
    const StandardizationResult result = standardizeManifests(changes.toStandardize);

    // A failed write is left alone: the next refresh finds the same work again.
    StoreFile::write(modificationIndexPath(),
                     ModificationIndexItem::encodedIndex(updatedIndex(index, changes, result), *this));
    if (settingsChanged && m_settings)
        StoreFile::write(standardizationSettingsPlistPath(), m_settings->encoded());

    publishResults(changes, result);
    QStringList written = result.standardizedFiles.values();
    written.removeDuplicates();
    std::sort(written.begin(), written.end());
    return written;
}

QStringList UpdatingManifestRepository::manifestFiles() {
    if (!isProfileManifestsRepository())
        return plistFiles(m_originals);
    const auto manifests = resolveOriginal(kProfileManifestsFolder);
    return manifests ? plistFiles(*manifests) : QStringList();
}

std::optional<QString> UpdatingManifestRepository::resolveOriginal(const QString& relativePath) const {
    return resolveInside(m_originals, relativePath);
}

std::optional<QString> UpdatingManifestRepository::resolveStandardized(const QString& relativePath) const {
    return resolveInside(standardizedManifestsDirectory(), relativePath);
}

void UpdatingManifestRepository::deleteFiles(const QStringList& files) const {
    for (const QString& file : files) {
        if (RepositoryStorePaths::isInside(file, m_root))
            QFile::remove(file);
    }
}

UpdatingManifestRepository::StandardizationResult
UpdatingManifestRepository::standardizeManifests(const QStringList& originals) {
    return StandardizationPipeline(*this).run(originals);
}

QList<ModificationIndexItem> UpdatingManifestRepository::loadModificationIndex() const {
    const auto stored = StoreFile::read(modificationIndexPath());
    return stored ? ModificationIndexItem::decodedIndex(*stored, *this) : QList<ModificationIndexItem>();
}

QString UpdatingManifestRepository::relativePath(const QString& baseDirectory, const QString& target) {
    return QDir(canonicalPath(baseDirectory)).relativeFilePath(canonicalPath(target));
}

QString UpdatingManifestRepository::canonicalPath(const QString& path) {
    return QDir::cleanPath(QFileInfo(path).absoluteFilePath());
}

bool UpdatingManifestRepository::haveSettingsChanged() const {
    if (!QFileInfo::exists(standardizationSettingsPlistPath()))
        return m_settings.has_value();
    const auto stored = StoreFile::read(standardizationSettingsPlistPath());
    const auto decoded = stored ? StandardizationSettings::decoded(*stored) : std::nullopt;
    return !decoded || !m_settings || *decoded != *m_settings;
}

UpdatingManifestRepository::Changes
UpdatingManifestRepository::detectChanges(bool settingsChanged, const QList<ModificationIndexItem>& index) {
    Changes changes;
    QStringList current;
    for (const QString& file : manifestFiles()) {
        if (const auto canonical = resolveOriginal(relativePath(m_originals, file)))
            current.append(*canonical);
    }
    const QStringList standardized = plistFiles(standardizedManifestsDirectory());
    for (const QString& file : current) {
        if (const auto date = contentModificationDate(file))
            changes.dates.insert(file, *date);
    }
    if (settingsChanged) {
        changes.toStandardize = current;
        changes.toDelete = standardized;
        return changes;
    }

    const QSet<QString> currentSet(current.cbegin(), current.cend());
    const QSet<QString> standardizedSet(standardized.cbegin(), standardized.cend());
    QSet<QString> indexed;
    for (const ModificationIndexItem& item : index)
        indexed.insert(item.originalLocation);

    QSet<QString> toDelete;
    QSet<QString> toStandardize;
    for (const QString& file : current) {
        if (!indexed.contains(file))
            toStandardize.insert(file);
    }
    for (const ModificationIndexItem& item : index) {
        const bool removed = !currentSet.contains(item.originalLocation);
        const auto date = changes.dates.find(item.originalLocation);
        const bool changed =
            date != changes.dates.cend() &&
            std::fabs(date->secondsSinceReferenceDate - item.modificationTime.secondsSinceReferenceDate) >
                kModificationTimeSlack;
        const bool lost = !removed && !standardizedSet.contains(item.standardizedLocation);
        if (removed)
            changes.removed.append(item);
        if (removed || changed)
            toDelete.insert(item.standardizedLocation);
        if (changed || lost)
            toStandardize.insert(item.originalLocation);
    }
    // In listing order, so that which original of a domain leads is the same on every run.
    for (const QString& file : current) {
        if (toStandardize.contains(file))
            changes.toStandardize.append(file);
    }
    changes.toDelete = QStringList(toDelete.cbegin(), toDelete.cend());
    std::sort(changes.toDelete.begin(), changes.toDelete.end());
    return changes;
}

QList<ModificationIndexItem>
UpdatingManifestRepository::updatedIndex(const QList<ModificationIndexItem>& index, const Changes& changes,
                                         const StandardizationResult& result) const {
    const QSet<QString> deleted(changes.toDelete.cbegin(), changes.toDelete.cend());
    QList<ModificationIndexItem> updated;
    for (const ModificationIndexItem& item : index) {
        const bool survives = !deleted.contains(item.originalLocation) &&
                              !deleted.contains(item.standardizedLocation) &&
                              !result.standardizedFiles.contains(item.originalLocation);
        if (survives)
            updated.append(item);
    }
    for (auto it = result.standardizedFiles.cbegin(); it != result.standardizedFiles.cend(); ++it) {
        // Without a date the next refresh can't tell a change; it lists the
        // original as new instead.
        const auto date = changes.dates.find(it.key());
        if (date != changes.dates.cend())
            updated.append(ModificationIndexItem{it.key(), it.value(), *date});
    }
    return updated;
}

void UpdatingManifestRepository::publishResults(const Changes& changes, const StandardizationResult& result) {
    UpdatingRepositoryStatus::Results results;
    QMap<QString, QStringList> originalsOfFile;
    for (auto it = result.standardizedFiles.cbegin(); it != result.standardizedFiles.cend(); ++it)
        originalsOfFile[it.value()].append(it.key());

    for (const ModificationIndexItem& item : changes.removed) {
        if (originalsOfFile.contains(item.standardizedLocation))
            continue;
        const QString domain = QFileInfo(item.standardizedLocation).completeBaseName();
        results.insert(domain, UpdateResultsItem{UpdateResultsItem::UpdateStatuses::removed, domain, {}, {}});
    }
    for (auto it = originalsOfFile.cbegin(); it != originalsOfFile.cend(); ++it) {
        QList<plist::Date> fileDates;
        QList<plist::Date> manifestDates;
        for (const QString& original : it.value()) {
            if (const auto date = changes.dates.find(original); date != changes.dates.cend())
                fileDates.append(*date);
            if (const auto date = result.lastModified.find(original); date != result.lastModified.cend())
                manifestDates.append(*date);
        }
        const QString domain = QFileInfo(it.key()).completeBaseName();
        results.insert(domain, UpdateResultsItem{UpdateResultsItem::UpdateStatuses::updated, domain,
                                                 newest(fileDates), newest(manifestDates)});
    }

    // Results pile up until the domains are reloaded and the user has seen them.
    const UpdatingRepositoryStatus::Results& previous = m_status.lastResults();
    for (auto it = previous.cbegin(); it != previous.cend(); ++it) {
        if (!results.contains(it.key()))
            results.insert(it.key(), it.value());
    }
    m_status.setLastResults(results);
}

} // namespace quorlin
