#include "supply/PFMDomainManager.h"

#include "plist/ApplicationIdentity.h"
#include "plist/DefaultsKey.h"
#include "plist/UserDefaults.h"
#include "supply/FolderBookmark.h"
#include "supply/GitHubManifestRepository.h"
#include "supply/LocalManifestRepository.h"
#include "supply/RepositoryStorePaths.h"
#include "supply/StaleStoreRemover.h"

#include <QImage>

#include <utility>

namespace quorlin {

namespace {

namespace Key = DefaultsKey;

const QString kDefaultBranch = QStringLiteral("master");

ResourceFolder requiredResourceFolder() {
    auto folder = ResourceFolder::locate();
    if (!folder)
        qFatal("%s", qPrintable(ResourceFolder::missingMessage()));
    return *folder;
}

} // namespace

PFMDomainManager::PFMDomainManager(UserDefaults& defaults, ResourceFolder resources, QObject* parent)
    : QObject(parent)
    , m_defaults(defaults)
    , m_resources(std::move(resources))
    , m_bundledManifestRepository(
          std::make_shared<BundledManifestRepository>(m_resources.manifestsDirectory()))
    , m_mainManifestRepository(m_bundledManifestRepository) {
    adopt(loadRepositoriesFromSettings(m_defaults, defaultStandardizationSettings()));
    reloadDomains();
    removeStaleStores();
}

PFMDomainManager::~PFMDomainManager() = default;

PFMDomainManager& PFMDomainManager::shared() {
    static PFMDomainManager instance(UserDefaults::standard(), requiredResourceFolder());
    return instance;
}

LoadedRepositories PFMDomainManager::loadRepositoriesFromSettings(const UserDefaults& defaults,
                                                                  const StandardizationSettings& settings) {
    LoadedRepositories loaded;
    const auto type = defaults.string(Key::manifestRepositoryType);
    if (type == DefaultsValue::repositoryTypeOnline)
        loadOnlineRepository(defaults, settings, loaded);
    else if (type == DefaultsValue::repositoryTypeLocal)
        loadLocalRepository(defaults, settings, loaded);
    return loaded;
}

void PFMDomainManager::loadOnlineRepository(const UserDefaults& defaults,
                                            const StandardizationSettings& settings,
                                            LoadedRepositories& loaded) {
    const auto address = defaults.string(Key::onlineManifestRepositoryAddress);
    if (!address || !RepositoryStorePaths::addressIsValid(*address))
        return;
    const QString branch = defaults.string(Key::onlineManifestRepositoryBranchName).value_or(kDefaultBranch);
    if (const auto store = storageDirectoryForRepositoryAddress(*address, branch)) {
        loaded.online = LoadedRepositories::Online{*address, branch, *store};
        loaded.mainRepository = GitHubManifestRepository::make(*store, *address, branch, settings);
    }
    loadUserManifestFolder(defaults, settings, loaded);
}

void PFMDomainManager::loadUserManifestFolder(const UserDefaults& defaults,
                                              const StandardizationSettings& settings,
                                              LoadedRepositories& loaded) {
    const auto data = defaults.data(Key::userManifestFolderBookmark);
    if (!data)
        return;
    const auto opened = openBookmark(*data);
    if (!opened)
        return;
    if (!*opened) {
        loaded.errors.append(
            Errors{Errors::Kind::overrideManifestRepositoryDirectoryNoLongerAvailable, opened->error().path});
        return;
    }
    const auto& [folder, store] = **opened;
    loaded.overrideRepository = LocalManifestRepository::make(store, folder, settings);
    if (loaded.overrideRepository)
        loaded.bookmarks.append(folder);
}

void PFMDomainManager::loadLocalRepository(const UserDefaults& defaults,
                                           const StandardizationSettings& settings,
                                           LoadedRepositories& loaded) {
    const auto data = defaults.data(Key::localRepositoryPathBookmark);
    if (!data)
        return;
    const auto opened = openBookmark(*data);
    if (!opened)
        return;
    if (!*opened) {
        loaded.errors.append(opened->error());
        return;
    }
    // The user folder never applies here: it overrides only an online repository.
    loaded.local = **opened;
    loaded.mainRepository =
        LocalManifestRepository::make(loaded.local->storageDirectory, loaded.local->folder, settings);
    if (loaded.mainRepository)
        loaded.bookmarks.append(loaded.local->folder);
}

std::optional<Expected<LoadedRepositories::LocalFolder, PFMDomainManager::Errors>>
PFMDomainManager::openBookmark(const QByteArray& data) {
    using State = FolderBookmark::State;
    const FolderBookmark::Resolution resolution = FolderBookmark::open(data);
    const auto error = [](std::optional<QString> path) {
        return fail(Errors{Errors::Kind::localManifestRepositoryDirectoryNoLongerAvailable, std::move(path)});
    };
    switch (resolution.state) {
    case State::unresolvable:
        return error(std::nullopt);
    case State::inaccessible:
        return error(resolution.folder);
    case State::missing:
        return std::nullopt;
    case State::available:
        break;
    }
    const auto store = storageDirectoryForLocalFolder(resolution.folder);
    if (!store)
        return std::nullopt;
    return LoadedRepositories::LocalFolder{resolution.folder, *store};
}

void PFMDomainManager::reloadRepositories() {
    adopt(loadRepositoriesFromSettings(m_defaults, defaultStandardizationSettings()));
    reloadDomains();
}

void PFMDomainManager::lineUpRepositoryFromSettings() {
    if (m_defaults.string(Key::manifestRepositoryType) != DefaultsValue::repositoryTypeLocal)
        return;
    const auto data = m_defaults.data(Key::localRepositoryPathBookmark);
    if (!data)
        return;
    const FolderBookmark::Resolution resolution = FolderBookmark::open(*data);
    if (resolution.state != FolderBookmark::State::available)
        return;
    const QString folder = UpdatingManifestRepository::canonicalPath(resolution.folder);
    const auto sameFolder = [&folder](const std::shared_ptr<ManifestRepository>& repository) {
        const auto* local = dynamic_cast<const LocalManifestRepository*>(repository.get());
        return local && local->originalManifestsDirectory() == folder;
    };
    if (sameFolder(m_mainManifestRepository))
        return;
    if (sameFolder(m_overrideManifestRepository)) {
        m_linedUpManifestRepository =
            std::dynamic_pointer_cast<UpdatingManifestRepository>(m_overrideManifestRepository);
        return;
    }
    const auto store = storageDirectoryForLocalFolder(resolution.folder);
    if (!store)
        return;
    if (auto repository =
            LocalManifestRepository::make(*store, resolution.folder, defaultStandardizationSettings())) {
        m_linedUpManifestRepository = std::move(repository);
        m_accessedSecurityBookmarks.append(resolution.folder);
        observeRepositories();
    }
}

void PFMDomainManager::setWindowsShouldIndicateOnlineUpdates(bool indicate) {
    m_windowsShouldIndicateOnlineUpdates = indicate;
    updateAreUpdatesAvailable();
}

void PFMDomainManager::adopt(LoadedRepositories loaded) {
    m_repositoryErrors = std::move(loaded.errors);
    m_mainManifestRepository =
        loaded.mainRepository ? std::move(loaded.mainRepository) : m_bundledManifestRepository;
    m_overrideManifestRepository = std::move(loaded.overrideRepository);
    // Folders are plain paths here: there is no access to give back.
    m_accessedSecurityBookmarks = std::move(loaded.bookmarks);
}

UpdatingManifestRepository*
PFMDomainManager::updating(const std::shared_ptr<ManifestRepository>& repository) {
    return dynamic_cast<UpdatingManifestRepository*>(repository.get());
}

void PFMDomainManager::reloadDomains() {
    m_linedUpManifestRepository.reset();
    // A repository with nothing yet (a new online store before its first
    // download) waits in line while the bundled set serves.
    if (m_mainManifestRepository->standardizedManifests().isEmpty()) {
        m_linedUpManifestRepository =
            std::dynamic_pointer_cast<UpdatingManifestRepository>(m_mainManifestRepository);
        m_mainManifestRepository = m_bundledManifestRepository;
    }
    if (auto* main = updating(m_mainManifestRepository))
        main->status().setLastResults({});
    if (auto* override = updating(m_overrideManifestRepository))
        override->status().setLastResults({});

    DomainList domains;
    for (const plist::Dictionary& manifest : m_mainManifestRepository->standardizedManifests()) {
        if (auto domain = PFMDomain::make(manifest))
            domains.append(std::move(domain));
    }
    if (m_overrideManifestRepository) {
        // An override replaces a domain whole: the two manifests are not merged.
        for (const plist::Dictionary& manifest : m_overrideManifestRepository->standardizedManifests()) {
            auto domain = PFMDomain::make(manifest);
            if (!domain)
                continue;
            domains.removeIf(
                [&](const auto& other) { return other->domainString() == domain->domainString(); });
            domains.append(std::move(domain));
        }
    }
    m_domains = std::move(domains);
    Q_EMIT domainsChanged();
    observeRepositories();
    updateAreUpdatesAvailable();
}

void PFMDomainManager::observeRepositories() {
    for (const auto& connection : std::exchange(m_repositoryObservations, {}))
        QObject::disconnect(connection);
    UpdatingManifestRepository* watched =
        m_linedUpManifestRepository ? m_linedUpManifestRepository.get() : updating(m_mainManifestRepository);
    for (UpdatingManifestRepository* repository : {watched, updating(m_overrideManifestRepository)}) {
        if (repository)
            m_repositoryObservations.append(connect(&repository->status(),
                                                    &UpdatingRepositoryStatus::isCheckingForUpdatesChanged,
                                                    this, &PFMDomainManager::updateAreUpdatesAvailable));
    }
}

void PFMDomainManager::updateAreUpdatesAvailable() {
    if (auto* override = updating(m_overrideManifestRepository);
        override && !override->status().lastResults().isEmpty()) {
        setAreUpdatesAvailable(true);
        return;
    }
    UpdatingManifestRepository* repository =
        m_linedUpManifestRepository ? m_linedUpManifestRepository.get() : updating(m_mainManifestRepository);
    if (!repository || repository->status().lastResults().isEmpty()) {
        setAreUpdatesAvailable(false);
        return;
    }
    if (dynamic_cast<LocalManifestRepository*>(repository)) {
        setAreUpdatesAvailable(true);
        return;
    }
    // An online check runs at every start; its results are news only once
    // the user has touched the repository settings.
    setAreUpdatesAvailable(dynamic_cast<GitHubManifestRepository*>(repository) &&
                           m_windowsShouldIndicateOnlineUpdates);
}

void PFMDomainManager::setAreUpdatesAvailable(bool areUpdatesAvailable) {
    if (m_areUpdatesAvailable == areUpdatesAvailable)
        return;
    m_areUpdatesAvailable = areUpdatesAvailable;
    Q_EMIT areUpdatesAvailableChanged(areUpdatesAvailable);
}

std::shared_ptr<const PFMDomain> PFMDomainManager::configurationDomain() const {
    for (const auto& domain : m_domains) {
        if (domain->domainString().isEmpty())
            return domain;
    }
    return nullptr;
}

DomainIcon PFMDomainManager::icon(const PFMDomain& domain) {
    if (const auto& data = domain.icon()) {
        const QImage image = QImage::fromData(*data);
        if (!image.isNull())
            return DomainIcon{image, domain.iconIsTemplate()};
    }
    if (auto bundled = m_bundledManifestRepository->icon(domain.domainString()))
        return std::move(*bundled);
    return defaultIcon();
}

const DomainIcon& PFMDomainManager::defaultIcon() {
    if (!m_defaultIcon)
        m_defaultIcon = DomainIcon{QImage(m_resources.imagePath(QStringLiteral("domainIconDefault"))), false};
    return *m_defaultIcon;
}

std::optional<QString> PFMDomainManager::gitHubStorageRoot() {
    return RepositoryStorePaths::gitHubStorageRoot();
}

std::optional<QString> PFMDomainManager::localStorageRoot() {
    return RepositoryStorePaths::localStorageRoot();
}

std::optional<QString> PFMDomainManager::storageDirectoryForRepositoryAddress(const QString& address,
                                                                              const QString& branch) {
    return RepositoryStorePaths::storageDirectoryForRepositoryAddress(address, branch);
}

std::optional<QString> PFMDomainManager::storageDirectoryForLocalFolder(const QString& folder) {
    return RepositoryStorePaths::storageDirectoryForLocalFolder(folder);
}

void PFMDomainManager::removeStaleStores() {
    QStringList kept;
    const std::shared_ptr<ManifestRepository> linedUp = m_linedUpManifestRepository;
    for (const auto& repository : {m_mainManifestRepository, m_overrideManifestRepository, linedUp}) {
        if (!repository)
            continue;
        if (const auto store = repository->localStorageRootDirectory())
            kept.append(*store);
    }
    QStringList roots;
    for (const auto& root : {gitHubStorageRoot(), localStorageRoot()}) {
        if (root)
            roots.append(*root);
    }
    StaleStoreRemover::removeStaleStores(roots, kept);
}

StandardizationSettings PFMDomainManager::defaultStandardizationSettings() const {
    return standardizationSettings(m_defaults, m_resources);
}

StandardizationSettings PFMDomainManager::standardizationSettings(const UserDefaults& defaults,
                                                                  const ResourceFolder& resources) {
    StandardizationSettings settings;
    settings.hidePayloadTopLevelKeys = true;
    settings.sortOrder = defaultSortOrder();
    settings.scrubThirdPartyPlaceholders = true;
    if (defaults.boolean(Key::maximizeNonStandardManifestCompatibility).value_or(false))
        settings.supportSearchDirectory = resources.manifestSupportDirectory();
    settings.supportVersion = ApplicationIdentity::shortVersionString();
    return settings;
}

QStringList PFMDomainManager::defaultSortOrder() {
    return {
        QStringLiteral(""),
        QStringLiteral("com.apple.applicationaccess"),
        QStringLiteral("com.apple.domains"),
        QStringLiteral("com.apple.proxy.http.global"),
        QStringLiteral("com.apple.dnsProxy.managed"),
        QStringLiteral("com.apple.defaults.managed"),
        QStringLiteral("com.apple.webcontent-filter"),
        QStringLiteral("com.apple.security.pem, com.apple.security.pkcs1, com.apple.security.pkcs12"),
        QStringLiteral("com.apple.security.root"),
        QStringLiteral("com.apple.security.certificatetransparency"),
        QStringLiteral("com.apple.mobiledevice.passwordpolicy"),
        QStringLiteral("com.apple.wifi.managed"),
        QStringLiteral("com.apple.vpn.managed"),
        QStringLiteral("com.apple.vpn.managed.applayer"),
        QStringLiteral("com.apple.airplay"),
        QStringLiteral("com.apple.airplay.security"),
        QStringLiteral("com.apple.airprint"),
        QStringLiteral("com.apple.caldav.account"),
        QStringLiteral("com.apple.subscribedcalendar.account"),
        QStringLiteral("com.apple.carddav.account"),
        QStringLiteral("com.apple.eas.account"),
        QStringLiteral("com.apple.google-oauth"),
        QStringLiteral("com.apple.ldap.account"),
        QStringLiteral("com.apple.mail.managed"),
        QStringLiteral("com.apple.osxserver.account"),
        QStringLiteral("com.apple.security.scep"),
        QStringLiteral("com.apple.cellular"),
        QStringLiteral("com.apple.font"),
        QStringLiteral("com.apple.notificationsettings"),
        QStringLiteral("com.apple.conferenceroomdisplay"),
        QStringLiteral("com.apple.tvremote"),
        QStringLiteral("com.apple.shareddeviceconfiguration"),
        QStringLiteral("com.apple.webClip.managed"),
        QStringLiteral("com.apple.app.lock"),
        QStringLiteral("com.apple.enrollment"),
        QStringLiteral("com.apple.mdm"),
        QStringLiteral("com.apple.profileRemovalPassword"),
    };
}

} // namespace quorlin
