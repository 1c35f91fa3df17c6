#include "supply/ManifestRepository.h"

#include "plist/PlistReader.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>

#include <algorithm>

namespace quorlin {

namespace {

const QString kDomainKey = QStringLiteral("pfm_domain");
const QString kPlistExtension = QStringLiteral("plist");

void collectPlistFiles(const QString& directory, QStringList& files) {
    // QDir leaves hidden entries out unless asked, folders included.
    const QFileInfoList entries =
        QDir(directory).entryInfoList(QDir::AllEntries | QDir::NoDotAndDotDot, QDir::Name);
    for (const QFileInfo& entry : entries) {
        if (entry.isDir()) {
            // A link back up the tree would never end.
            if (!entry.isSymLink())
                collectPlistFiles(entry.filePath(), files);
        } else if (entry.suffix() == kPlistExtension) {
            files.append(entry.filePath());
        }
    }
}

std::optional<plist::Dictionary> readManifest(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const auto read = plist::PlistReader::read(file.readAll());
    if (!read || !read->root.dictionary())
        return std::nullopt;
    return *read->root.dictionary();
}

} // namespace

ManifestRepository::ManifestRepository(QString standardizedManifestsDirectory)
    : m_standardizedManifestsDirectory(std::move(standardizedManifestsDirectory)) {}

ManifestRepository::~ManifestRepository() = default;

const QList<plist::Dictionary>& ManifestRepository::standardizedManifests() const {
    readIfUnread();
    return m_standardizedManifests;
}

QList<plist::Dictionary>& ManifestRepository::mutableStandardizedManifests() {
    readIfUnread();
    return m_standardizedManifests;
}

void ManifestRepository::readIfUnread() const {
    // The repository itself is never const: only its reading is put off.
    if (m_unread)
        const_cast<ManifestRepository*>(this)->ManifestRepository::reloadManifests();
}

void ManifestRepository::reloadManifests() {
    m_unread = false;
    const auto read = readManifests(plistFiles(m_standardizedManifestsDirectory));
    m_standardizedManifests.clear();
    for (const auto& [path, manifest] : read)
        m_standardizedManifests.append(manifest);
}

void ManifestRepository::reloadManifests(const QStringList& files) {
    readIfUnread();
    const auto read = readManifests(files);
    QSet<QString> replacedDomains;
    for (const auto& [path, manifest] : read) {
        if (const auto domain = manifest.string(kDomainKey))
            replacedDomains.insert(*domain);
    }
    m_standardizedManifests.removeIf([&](const plist::Dictionary& manifest) {
        const auto domain = manifest.string(kDomainKey);
        return domain && replacedDomains.contains(*domain);
    });
    for (const auto& [path, manifest] : read)
        m_standardizedManifests.append(manifest);
}

std::optional<plist::Dictionary> ManifestRepository::manifest(const QString& domain) const {
    readIfUnread();
    const auto found = std::find_if(
        m_standardizedManifests.cbegin(), m_standardizedManifests.cend(),
        [&](const plist::Dictionary& manifest) { return manifest.string(kDomainKey) == domain; });
    if (found == m_standardizedManifests.cend())
        return std::nullopt;
    return *found;
}

std::optional<QString> ManifestRepository::localStorageRootDirectory() const {
    return std::nullopt;
}

QStringList ManifestRepository::plistFiles(const QString& directory) {
    QStringList files;
    if (!directory.isEmpty())
        collectPlistFiles(directory, files);
    return files;
}

QList<std::pair<QString, plist::Dictionary>> ManifestRepository::readManifests(const QStringList& files) {
    QList<std::pair<QString, plist::Dictionary>> read;
    QSet<QString> seen;
    for (const QString& path : files) {
        if (seen.contains(path))
            continue;
        seen.insert(path);
        if (auto manifest = readManifest(path))
            read.append({path, std::move(*manifest)});
    }
    return read;
}

} // namespace quorlin
