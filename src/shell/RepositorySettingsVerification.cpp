#include "shell/RepositorySettingsVerification.h"

#include "plist/UserDefaults.h"
#include "shell/RepositoryFolderCheck.h"
#include "supply/GitHubManifestRepository.h"
#include "supply/PFMDomainManager.h"

namespace quorlin {

namespace {

using Verification = GitHubRepositoryStatus::VerificationStatuses;

} // namespace

RepositorySettingsVerification::RepositorySettingsVerification(
    UserDefaults& defaults, std::optional<StandardizationSettings> settings, QObject* parent)
    : QObject(parent)
    , m_defaults(defaults)
    , m_standardization(std::move(settings)) {}

RepositorySettingsVerification::~RepositorySettingsVerification() = default;

RepositorySettingsVerification::Result
RepositorySettingsVerification::verify(const ManifestRepositorySettings& entered) {
    cancel();
    m_entered = entered;
    if (ManifestRepositorySettings::read(m_defaults) == entered)
        return {Outcome::unchanged, std::nullopt};
    if (entered.isOnline())
        return verifyOnline();
    if (entered.isLocal())
        return verifyLocal();
    return store();
}

RepositorySettingsVerification::Result RepositorySettingsVerification::verifyOnline() {
    const bool addressValid = GitHubManifestRepository::addressIsValid(m_entered.onlineAddress);
    const bool branchValid = GitHubManifestRepository::branchIsValid(m_entered.onlineBranch);
    if (!addressValid || !branchValid)
        return {Outcome::refused, ApplicationNotice::onlineSettingsInvalid(addressValid, branchValid)};
    const auto store = PFMDomainManager::storageDirectoryForRepositoryAddress(m_entered.onlineAddress,
                                                                              m_entered.onlineBranch);
    if (store)
        m_repository = GitHubManifestRepository::make(*store, m_entered.onlineAddress, m_entered.onlineBranch,
                                                      m_standardization);
    if (!m_repository)
        return {Outcome::refused, ApplicationNotice::onlineVerificationFailed(false)};
    // The repository's own check has started; its verdict comes once the index was read.
    connect(&m_repository->validationStatus(), &GitHubRepositoryStatus::verificationStatusChanged, this,
            &RepositorySettingsVerification::verificationStatusChanged, Qt::QueuedConnection);
    connect(m_repository.get(), &GitHubManifestRepository::checkFinished, this,
            &RepositorySettingsVerification::verificationStatusChanged, Qt::QueuedConnection);
    return {Outcome::verifying, std::nullopt};
}

void RepositorySettingsVerification::verificationStatusChanged() {
    if (!m_repository)
        return;
    const Verification status = m_repository->validationStatus().verificationStatus();
    const bool checkEnded = !m_repository->status().isCheckingForUpdates();
    if (status == Verification::notVerified && !checkEnded)
        return;
    if (status == Verification::verified) {
        cancel();
        Q_EMIT finished(store());
        return;
    }
    const bool noInternet =
        m_repository->status().errors().contains(GitHubRepositoryError::noInternetConnection);
    cancel();
    Q_EMIT finished({Outcome::refused, ApplicationNotice::onlineVerificationFailed(noInternet)});
}

RepositorySettingsVerification::Result RepositorySettingsVerification::verifyLocal() {
    switch (RepositoryFolderCheck::isManifestRepositoryFolder(m_entered.localRepositoryPath)) {
    case RepositoryFolderCheck::Result::valid:
        return store();
    case RepositoryFolderCheck::Result::tooManyPlistFiles:
        return {Outcome::needsConfirmation,
                ApplicationNotice::largeLocalFolder(RepositoryFolderCheck::plistFileLimit)};
    case RepositoryFolderCheck::Result::invalid:
        break;
    }
    return {Outcome::refused, ApplicationNotice::localFolderInvalid()};
}

void RepositorySettingsVerification::confirm() {
    store();
}

void RepositorySettingsVerification::cancel() {
    if (!m_repository)
        return;
    // Quietly: what it downloaded stays for the repository the settings will make.
    auto repository = std::move(m_repository);
    repository->disconnect(this);
    repository->validationStatus().disconnect(this);
    repository->cancelCheck();
}

RepositorySettingsVerification::Result RepositorySettingsVerification::store() {
    m_entered.store(m_defaults);
    Q_EMIT settingsStored();
    return {Outcome::stored, std::nullopt};
}

} // namespace quorlin
