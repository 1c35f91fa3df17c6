#pragma once

#include "plist/Expected.h"
#include "schema/PFMDomain.h"
#include "supply/BundledManifestRepository.h"
#include "supply/DomainIcon.h"
#include "supply/DomainManagerError.h"
#include "supply/LoadedRepositories.h"
#include "supply/ManifestRepository.h"
#include "supply/ResourceFolder.h"
#include "supply/StandardizationSettings.h"
#include "supply/UpdatingManifestRepository.h"

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>

namespace quorlin {

class UserDefaults;

// The one owner of what a window can offer as a payload: the domains in
// force and the repositories they come from. The settings choose the main
// repository; the bundled one stands behind it whenever it has nothing to
// give, and a user folder may replace single domains. Everything runs on
// the main thread.
class PFMDomainManager : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool areUpdatesAvailable READ areUpdatesAvailable NOTIFY areUpdatesAvailableChanged)

public:
    using Errors = DomainManagerError;
    using DomainList = QList<std::shared_ptr<const PFMDomain>>;

    // Reads the bundled manifests and the repository settings, loads the
    // domains and removes the stores no repository uses any more.
    PFMDomainManager(UserDefaults& defaults, ResourceFolder resources, QObject* parent = nullptr);
    ~PFMDomainManager() override;

    // The process-wide instance over the standard settings and the resources
    // next to the executable, made on first use. Without those resources the
    // program can't work at all, and the process ends with a message.
    static PFMDomainManager& shared();

    // Reads the settings into repositories without touching any manager;
    // updating repositories are made with the given standardization.
    static LoadedRepositories loadRepositoriesFromSettings(const UserDefaults& defaults,
                                                           const StandardizationSettings& settings);

    // Reads the settings again, puts their repositories in force and reloads the domains.
    void reloadRepositories();
    // Rebuilds the domains from the repositories in force.
    void reloadDomains();
    void updateAreUpdatesAvailable();
    // After the user changed the local repository but chose not to reload:
    // prepares the new repository, leaving the domains as they are.
    void lineUpRepositoryFromSettings();
    // Set by every change of the repository settings; until then an online
    // repository's results are not offered as updates.
    void setWindowsShouldIndicateOnlineUpdates(bool indicate);

    // In the main repository's order, with the user folder's domains at the end.
    const DomainList& domains() const { return m_domains; }
    // The first domain of the general payload, whose domain string is "".
    std::shared_ptr<const PFMDomain> configurationDomain() const;
    // The domain's own icon, else the bundled manifest's for its domain
    // string, else the named image "domainIconDefault".
    DomainIcon icon(const PFMDomain& domain);

    bool areUpdatesAvailable() const { return m_areUpdatesAvailable; }
    // From the last reading of the settings.
    const QList<Errors>& repositoryErrors() const { return m_repositoryErrors; }
    // The folders opened for the repositories in force.
    const QStringList& accessedSecurityBookmarks() const { return m_accessedSecurityBookmarks; }

    BundledManifestRepository& bundledManifestRepository() { return *m_bundledManifestRepository; }
    const ManifestRepository& mainManifestRepository() const { return *m_mainManifestRepository; }
    const ManifestRepository* overrideManifestRepository() const {
        return m_overrideManifestRepository.get();
    }
    // Ready but not yet in force: the configured repository while it has no
    // manifests, or one prepared after a settings change.
    UpdatingManifestRepository* linedUpManifestRepository() const {
        return m_linedUpManifestRepository.get();
    }
    const ResourceFolder& resourceFolder() const { return m_resources; }

    static std::optional<QString> gitHubStorageRoot();
    static std::optional<QString> localStorageRoot();
    static std::optional<QString> storageDirectoryForRepositoryAddress(const QString& address,
                                                                       const QString& branch);
    static std::optional<QString> storageDirectoryForLocalFolder(const QString& folder);

    StandardizationSettings defaultStandardizationSettings() const;
    // The same for any settings and resources, so a store made by the
    // command-line tool matches the one the editor expects.
    static StandardizationSettings standardizationSettings(const UserDefaults& defaults,
                                                           const ResourceFolder& resources);
    // The positions of the domains in the section list, the general one first.
    static QStringList defaultSortOrder();

Q_SIGNALS:
    void domainsChanged();
    void areUpdatesAvailableChanged(bool areUpdatesAvailable);

private:
    static void loadOnlineRepository(const UserDefaults& defaults, const StandardizationSettings& settings,
                                     LoadedRepositories& loaded);
    static void loadUserManifestFolder(const UserDefaults& defaults, const StandardizationSettings& settings,
                                       LoadedRepositories& loaded);
    static void loadLocalRepository(const UserDefaults& defaults, const StandardizationSettings& settings,
                                    LoadedRepositories& loaded);
    // The folder and its store, or the error that the bookmark gives; nothing
    // at all for a folder that is simply gone.
    static std::optional<Expected<LoadedRepositories::LocalFolder, Errors>>
    openBookmark(const QByteArray& data);

    void adopt(LoadedRepositories loaded);
    void observeRepositories();
    static UpdatingManifestRepository* updating(const std::shared_ptr<ManifestRepository>& repository);
    void setAreUpdatesAvailable(bool areUpdatesAvailable);
    void removeStaleStores();
    const DomainIcon& defaultIcon();

    UserDefaults& m_defaults;
    const ResourceFolder m_resources;
    DomainList m_domains;
    QStringList m_accessedSecurityBookmarks;
    const std::shared_ptr<BundledManifestRepository> m_bundledManifestRepository;
    std::shared_ptr<ManifestRepository> m_mainManifestRepository;
    std::shared_ptr<ManifestRepository> m_overrideManifestRepository;
    std::shared_ptr<UpdatingManifestRepository> m_linedUpManifestRepository;
    QList<QMetaObject::Connection> m_repositoryObservations;
    bool m_areUpdatesAvailable = false;
    bool m_windowsShouldIndicateOnlineUpdates = false;
    QList<Errors> m_repositoryErrors;
    std::optional<DomainIcon> m_defaultIcon;
};

} // namespace quorlin
