#pragma once

#include "shell/ApplicationNotice.h"
#include "shell/ManifestRepositorySettings.h"
#include "supply/StandardizationSettings.h"

#include <QObject>

#include <memory>
#include <optional>

namespace quorlin {

class GitHubManifestRepository;
class UserDefaults;

// Decides whether entered repository settings may replace the stored ones:
// online settings must reach their repository's index first, and a local
// folder must look like a repository. Settings are written only once they
// pass, and settingsStored() then tells the application.
class RepositorySettingsVerification : public QObject {
    Q_OBJECT

public:
    enum class Outcome {
        // Nothing to verify; the entered settings are what is stored.
        unchanged,
        stored,
        // The notice says why; nothing was stored.
        refused,
        // The notice asks to confirm; confirm() stores them.
        needsConfirmation,
        // An online check runs; finished() follows.
        verifying,
    };

    struct Result {
        Outcome outcome = Outcome::unchanged;
        std::optional<ApplicationNotice> notice;
    };

    RepositorySettingsVerification(UserDefaults& defaults, std::optional<StandardizationSettings> settings,
                                   QObject* parent = nullptr);
    ~RepositorySettingsVerification() override;

    Result verify(const ManifestRepositorySettings& entered);
    // Stores the settings whose confirmation was asked for.
    void confirm();
    // Drops a running online check; the stored settings stay.
    void cancel();
    bool isValidatingRepositorySettings() const { return m_repository != nullptr; }
    // The repository being verified, for its progress.
    GitHubManifestRepository* repository() const { return m_repository.get(); }

Q_SIGNALS:
    // Of an online check: `stored` or `refused` with the notice.
    void finished(const RepositorySettingsVerification::Result& result);
    void settingsStored();

private:
    Result verifyOnline();
    Result verifyLocal();
    void verificationStatusChanged();
    Result store();

    UserDefaults& m_defaults;
    std::optional<StandardizationSettings> m_standardization;
    ManifestRepositorySettings m_entered;
    std::unique_ptr<GitHubManifestRepository> m_repository;
};

} // namespace quorlin
