#pragma once

#include "plist/Value.h"
#include "supply/ManifestRepository.h"
#include "supply/ModificationIndexItem.h"
#include "supply/StandardizationSettings.h"
#include "supply/UpdatingRepositoryStatus.h"

#include <QHash>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

#include <optional>

namespace quorlin {

// A repository that keeps a store of its own: originals in whatever form
// they came, and beside them one standard-form file per domain, with an
// index of which original went into which file and how old it was then, so
// that a refresh standardizes only what changed. Subclasses decide where
// the originals come from and when to refresh.
//
// Paths are absolute and cleaned throughout ("canonical"): the index
// compares them as strings.
class UpdatingManifestRepository : public ManifestRepository {
public:
    // What a standardization wrote, per original that took part.
    struct StandardizationResult {
        // Original to the standardized file its domain went into.
        QMap<QString, QString> standardizedFiles;
        // Original to its "pfm_last_modified".
        QMap<QString, plist::Date> lastModified;
    };

    ~UpdatingManifestRepository() override;

    const std::optional<StandardizationSettings>& standardizationSettings() const { return m_settings; }
    UpdatingRepositoryStatus& status() { return m_status; }
    const UpdatingRepositoryStatus& status() const { return m_status; }

    const QString& rootDirectory() const { return m_root; }
    std::optional<QString> localStorageRootDirectory() const override { return m_root; }
    const QString& originalManifestsDirectory() const { return m_originals; }
    QString modificationIndexPath() const;
    QString standardizationSettingsPlistPath() const;

    // Whether the originals follow the layout of the ProfileManifests
    // project; asked of the subclass once.
    bool isProfileManifestsRepository();

    // Starts a refresh; when and how is the subclass's business.
    virtual void checkForUpdates();
    // Brings the standardized files and the index up to date with the
    // originals; returns the standardized files written.
    virtual QStringList processOriginals();

    // The original files: every plist below "Manifests" in the
    // ProfileManifests layout, else every plist below the originals.
    QStringList manifestFiles();
    // The path made absolute and cleaned, if it lies inside the folder.
    std::optional<QString> resolveOriginal(const QString& relativePath) const;
    std::optional<QString> resolveStandardized(const QString& relativePath) const;
    // Removes the files that lie inside the store; the others, and
    // failures, are passed over.
    void deleteFiles(const QStringList& files) const;
    // Turns the given originals, with every other original of their
    // domains, into standardized files.
    StandardizationResult standardizeManifests(const QStringList& originals);

    // The index as stored; empty when missing or when any item fails.
    QList<ModificationIndexItem> loadModificationIndex() const;

    // The path of target from the base folder, with ".." for each level
    // of the base that target isn't inside.
    static QString relativePath(const QString& baseDirectory, const QString& target);
    // An absolute, cleaned form of the path.
    static QString canonicalPath(const QString& path);

protected:
    UpdatingManifestRepository(const QString& root, const QString& originals,
                               std::optional<StandardizationSettings> settings);

    // Makes the store's folders, brings it up to date and reads its
    // manifests; false when the folders can't be made, and the repository
    // must then not be used. Subclasses call it once they are complete,
    // since it calls their overrides.
    bool openStore();

    virtual bool isProfileManifestsRepositoryValue();

private:
    struct Changes {
        QStringList toStandardize;
        QStringList toDelete;
        // Original to its content modification date; none for a file without one.
        QHash<QString, plist::Date> dates;
        QList<ModificationIndexItem> removed;
    };

    bool haveSettingsChanged() const;
    Changes detectChanges(bool settingsChanged, const QList<ModificationIndexItem>& index);
    QList<ModificationIndexItem> updatedIndex(const QList<ModificationIndexItem>& index,
                                              const Changes& changes,
                                              const StandardizationResult& result) const;
    void publishResults(const Changes& changes, const StandardizationResult& result);

    std::optional<StandardizationSettings> m_settings;
    UpdatingRepositoryStatus m_status;
    const QString m_root;
    const QString m_originals;
    std::optional<bool> m_isProfileManifestsRepository;
};

} // namespace quorlin
