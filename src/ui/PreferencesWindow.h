#pragma once

#include "shell/FactoryReset.h"
#include "shell/ManifestRepositorySettings.h"
#include "supply/StandardizationSettings.h"

#include <QWidget>

#include <functional>
#include <optional>

class QButtonGroup;
class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;
class QTabWidget;
class QWidget;

namespace quorlin {

class NoticePresenter;
class ProcessRestarter;
class RepositorySettingsVerification;
class UserDefaults;

// The program's preferences: defaults for new profiles, the manifest
// repository, and maintenance. Every control but those of the repository
// writes its default at once; the repository settings are stored only once
// verified, on leaving their tab, closing the window or "Verify".
class PreferencesWindow : public QWidget {
    Q_OBJECT

public:
    // Asks for a folder; an empty answer is a cancel.
    using FolderChooser = std::function<QString(QWidget* parent, const QString& title)>;

    struct Services {
        NoticePresenter& notices;
        ProcessRestarter& restarter;
        FactoryReset::CloseAllDocuments closeAllDocuments;
        std::optional<StandardizationSettings> standardization;
    };

    enum class Pane { defaults = 0, manifests = 1, maintenance = 2 };

    PreferencesWindow(UserDefaults& defaults, Services services, QWidget* parent = nullptr);
    ~PreferencesWindow() override;

    void selectPane(Pane pane);
    void setFolderChooser(FolderChooser chooser) { m_chooseFolder = std::move(chooser); }
    void setSigningIdentityNames(const QStringList& names);

    // Whether the repository settings as entered may be left: at once when
    // they are stored or unchanged, later when they must be verified online.
    void requestLeave(std::function<void(bool mayLeave)> done);
    bool isValidatingRepositorySettings() const;
    const ManifestRepositorySettings& viewManifestRepositorySettings() const { return m_view; }

Q_SIGNALS:
    // The stored repository settings changed.
    void manifestRepositoryDidChange();
    // The user edited the organization or the consent text for new profiles.
    void profileDefaultTextEdited(const QString& defaultsKey);

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    QWidget* buildDefaultsPane();
    QWidget* buildManifestsPane();
    QWidget* buildMaintenancePane();
    QWidget* buildVerificationRow(QWidget* pane);

    void bindLineEdit(QLineEdit* field, const QString& key);
    void bindCheckBox(QCheckBox* box, const QString& key);

    void showSettings();
    void typeClicked(int id);
    void chooseFolder(bool localRepository);
    void removeFolder(bool localRepository);
    void restoreDefault();
    void verifyClicked();
    void verificationFinished(bool stored, const std::optional<ApplicationNotice>& notice);
    void cancelVerification();
    void finishLeave(bool mayLeave);
    void revert();
    void resetToFactorySettings();
    void tabChanged(int index);

    UserDefaults& m_defaults;
    Services m_services;
    RepositorySettingsVerification* m_verification = nullptr;
    ManifestRepositorySettings m_view;
    FolderChooser m_chooseFolder;
    std::function<void(bool)> m_pendingLeave;
    int m_currentTab = 0;
    bool m_closeAfterVerification = false;

    QTabWidget* m_tabs = nullptr;
    QComboBox* m_signingIdentity = nullptr;
    QButtonGroup* m_types = nullptr;
    QLineEdit* m_address = nullptr;
    QLineEdit* m_branch = nullptr;
    QCheckBox* m_compatibility = nullptr;
    QLabel* m_localFolder = nullptr;
    QLabel* m_userFolder = nullptr;
    QWidget* m_verificationRow = nullptr;
    QProgressBar* m_verificationProgress = nullptr;
};

} // namespace quorlin
