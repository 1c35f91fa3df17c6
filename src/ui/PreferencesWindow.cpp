#include "ui/PreferencesWindow.h"

#include "plist/DefaultsKey.h"
#include "plist/UserDefaults.h"
#include "shell/ApplicationNotice.h"
#include "shell/AuditLogAnalyticsSink.h"
#include "shell/FactoryDefaults.h"
#include "shell/RepositorySettingsVerification.h"
#include "supply/FolderBookmark.h"
#include "supply/GitHubManifestRepository.h"
#include "ui/EditorApplication.h"
#include "ui/NoticePresenter.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QCoreApplication>
#include <QDesktopServices>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QStyle>
#include <QTabWidget>
#include <QUrl>
#include <QVBoxLayout>

namespace quorlin {

namespace {

enum TypeId { online = 0, local = 1, bundled = 2 };

QString typeValue(int id) {
    switch (id) {
    case online:
        return DefaultsValue::repositoryTypeOnline;
    case local:
        return DefaultsValue::repositoryTypeLocal;
    default:
        return DefaultsValue::repositoryTypeBundled;
    }
}

int typeId(const ManifestRepositorySettings& settings) {
    return settings.isOnline() ? online : settings.isLocal() ? local : bundled;
}

QString defaultFolderChooser(QWidget* parent, const QString& title) {
    return QFileDialog::getExistingDirectory(parent, title);
}

QPushButton* namedButton(const QString& text, const QString& name, QWidget* parent) {
    auto* button = new QPushButton(text, parent);
    button->setObjectName(name);
    return button;
}

} // namespace

PreferencesWindow::PreferencesWindow(UserDefaults& defaults, Services services, QWidget* parent)
    : QWidget(parent, Qt::Window)
    , m_defaults(defaults)
    , m_services(std::move(services))
    , m_verification(new RepositorySettingsVerification(defaults, m_services.standardization, this))
    , m_view(ManifestRepositorySettings::read(defaults))
    , m_chooseFolder(defaultFolderChooser) {
    setObjectName(QStringLiteral("preferencesWindow"));
    setWindowTitle(tr("Preferences"));
    m_tabs = new QTabWidget(this);
    m_tabs->addTab(buildDefaultsPane(), tr("Defaults"));
    m_tabs->addTab(buildManifestsPane(), tr("Manifests"));
    m_tabs->addTab(buildMaintenancePane(), tr("Maintenance"));
    connect(m_tabs, &QTabWidget::currentChanged, this, &PreferencesWindow::tabChanged);
    (new QVBoxLayout(this))->addWidget(m_tabs);

    connect(m_verification, &RepositorySettingsVerification::settingsStored, this,
            &PreferencesWindow::manifestRepositoryDidChange);
    connect(m_verification, &RepositorySettingsVerification::finished, this,
            [this](const RepositorySettingsVerification::Result& result) {
                verificationFinished(result.outcome == RepositorySettingsVerification::Outcome::stored,
                                     result.notice);
            });
    showSettings();
}

PreferencesWindow::~PreferencesWindow() = default;

// Defaults for new profiles

QWidget* PreferencesWindow::buildDefaultsPane() {
    auto* pane = new QWidget(this);
    pane->setObjectName(QStringLiteral("defaultsPane"));
    auto* form = new QFormLayout(pane);
    auto* organization = new QLineEdit(pane);
    organization->setObjectName(QStringLiteral("organizationNameTextField"));
    bindLineEdit(organization, DefaultsKey::preferencesDefaultsOrganizationName);
    connect(organization, &QLineEdit::textEdited, this,
            [this] { Q_EMIT profileDefaultTextEdited(DefaultsKey::preferencesDefaultsOrganizationName); });
    form->addRow(tr("Organization:"), organization);
    auto* consent = new QLineEdit(pane);
    consent->setObjectName(QStringLiteral("consentTextField"));
    bindLineEdit(consent, DefaultsKey::preferencesDefaultsConsentText);
    connect(consent, &QLineEdit::textEdited, this,
            [this] { Q_EMIT profileDefaultTextEdited(DefaultsKey::preferencesDefaultsConsentText); });
    form->addRow(tr("Consent Text:"), consent);
    auto* prefix = new QLineEdit(pane);
    prefix->setObjectName(QStringLiteral("identifierPrefixTextField"));
    prefix->setPlaceholderText(tr("com.example"));
    bindLineEdit(prefix, DefaultsKey::identifierPrefix);
    form->addRow(tr("Identifier Prefix:"), prefix);

    m_signingIdentity = new QComboBox(pane);
    m_signingIdentity->setObjectName(QStringLiteral("defaultSigningIdentityPopUpButton"));
    connect(m_signingIdentity, &QComboBox::activated, this, [this](int index) {
        if (index == 0)
            m_defaults.remove(DefaultsKey::preferencesDefaultsSigningIdentity);
        else
            m_defaults.set(DefaultsKey::preferencesDefaultsSigningIdentity,
                           m_signingIdentity->itemText(index));
    });
    setSigningIdentityNames({});
    form->addRow(tr("Signing Identity:"), m_signingIdentity);

    auto* update = new QCheckBox(tr("Update open profiles when these defaults change"), pane);
    update->setObjectName(QStringLiteral("automaticDefaultsUpdateCheckbox"));
    bindCheckBox(update, DefaultsKey::preferencesDefaultsAutomaticallyUpdate);
    form->addRow(QString(), update);
    return pane;
}

void PreferencesWindow::setSigningIdentityNames(const QStringList& names) {
    m_signingIdentity->clear();
    m_signingIdentity->addItem(tr("None"));
    m_signingIdentity->addItems(names);
    const QString chosen =
        m_defaults.string(DefaultsKey::preferencesDefaultsSigningIdentity).value_or(QString());
    // A stored identity that is gone stays listed, so the setting isn't lost silently.
    if (!chosen.isEmpty() && m_signingIdentity->findText(chosen) < 0)
        m_signingIdentity->addItem(chosen);
    m_signingIdentity->setCurrentIndex(chosen.isEmpty() ? 0 : m_signingIdentity->findText(chosen));
}

void PreferencesWindow::bindLineEdit(QLineEdit* field, const QString& key) {
    field->setText(m_defaults.string(key).value_or(QString()));
    connect(field, &QLineEdit::textEdited, this, [this, key](const QString& text) {
        if (text.isEmpty())
            m_defaults.remove(key);
        else
            m_defaults.set(key, text);
    });
}

void PreferencesWindow::bindCheckBox(QCheckBox* box, const QString& key) {
    box->setChecked(m_defaults.boolean(key).value_or(false));
    connect(box, &QCheckBox::toggled, this, [this, key](bool checked) { m_defaults.set(key, checked); });
}

// Manifests

QWidget* PreferencesWindow::buildManifestsPane() {
    auto* pane = new QWidget(this);
    pane->setObjectName(QStringLiteral("manifestsPane"));
    auto* layout = new QVBoxLayout(pane);
    m_types = new QButtonGroup(pane);
    const auto addType = [&](const QString& text, const QString& name, int id) {
        auto* button = new QRadioButton(text, pane);
        button->setObjectName(name);
        m_types->addButton(button, id);
        layout->addWidget(button);
    };

    addType(tr("Online repository"), QStringLiteral("onlineTypeButton"), online);
    auto* onlineForm = new QFormLayout;
    m_address = new QLineEdit(pane);
    m_address->setObjectName(QStringLiteral("onlineAddressTextField"));
    connect(m_address, &QLineEdit::textEdited, this,
            [this](const QString& text) { m_view.onlineAddress = text; });
    onlineForm->addRow(tr("Address:"), m_address);
    m_branch = new QLineEdit(pane);
    m_branch->setObjectName(QStringLiteral("onlineBranchTextField"));
    connect(m_branch, &QLineEdit::textEdited, this,
            [this](const QString& text) { m_view.onlineBranch = text; });
    onlineForm->addRow(tr("Branch:"), m_branch);
    auto* restore = namedButton(tr("Restore Default"), QStringLiteral("restoreDefaultButton"), pane);
    connect(restore, &QPushButton::clicked, this, &PreferencesWindow::restoreDefault);
    onlineForm->addRow(QString(), restore);
    const auto folderRow = [&](QLabel*& label, const QString& name, bool localRepository) {
        auto* row = new QHBoxLayout;
        label = new QLabel(pane);
        label->setObjectName(name);
        row->addWidget(label, 1);
        auto* choose = namedButton(tr("Choose…"), name + QStringLiteral("ChooseButton"), pane);
        connect(choose, &QPushButton::clicked, this,
                [this, localRepository] { chooseFolder(localRepository); });
        auto* remove = namedButton(tr("Remove"), name + QStringLiteral("RemoveButton"), pane);
        connect(remove, &QPushButton::clicked, this,
                [this, localRepository] { removeFolder(localRepository); });
        row->addWidget(choose);
        row->addWidget(remove);
        return row;
    };
    onlineForm->addRow(tr("User Manifests:"), folderRow(m_userFolder, QStringLiteral("userFolder"), false));
    layout->addLayout(onlineForm);

    addType(tr("Local folder"), QStringLiteral("localTypeButton"), local);
    auto* localForm = new QFormLayout;
    localForm->addRow(tr("Folder:"), folderRow(m_localFolder, QStringLiteral("localFolder"), true));
    layout->addLayout(localForm);

    addType(tr("Bundled manifests"), QStringLiteral("bundledTypeButton"), bundled);
    connect(m_types, &QButtonGroup::idClicked, this, &PreferencesWindow::typeClicked);

    m_compatibility = new QCheckBox(tr("Maximize compatibility of non-standard manifests"), pane);
    m_compatibility->setObjectName(QStringLiteral("maximizeCompatibilityCheckbox"));
    connect(m_compatibility, &QCheckBox::clicked, this,
            [this](bool checked) { m_view.maximizeNonStandardManifestCompatibility = checked; });
    layout->addWidget(m_compatibility);
    layout->addStretch();
    layout->addWidget(buildVerificationRow(pane));
    return pane;
}

QWidget* PreferencesWindow::buildVerificationRow(QWidget* pane) {
    auto* row = new QWidget(pane);
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* help = namedButton(tr("Help"), QStringLiteral("manifestsHelpButton"), row);
    help->setIcon(style()->standardIcon(QStyle::SP_DialogHelpButton));
    connect(help, &QPushButton::clicked, this,
            [] { QDesktopServices::openUrl(QUrl(EditorApplication::helpAddress)); });
    layout->addWidget(help);
    m_verificationRow = new QWidget(row);
    auto* progressLayout = new QHBoxLayout(m_verificationRow);
    progressLayout->setContentsMargins(0, 0, 0, 0);
    progressLayout->addWidget(new QLabel(tr("Verifying…"), m_verificationRow));
    m_verificationProgress = new QProgressBar(m_verificationRow);
    m_verificationProgress->setObjectName(QStringLiteral("verificationProgress"));
    m_verificationProgress->setRange(0, 0);
    progressLayout->addWidget(m_verificationProgress, 1);
    auto* cancel = namedButton(tr("Cancel"), QStringLiteral("cancelVerificationButton"), m_verificationRow);
    connect(cancel, &QPushButton::clicked, this, &PreferencesWindow::cancelVerification);
    progressLayout->addWidget(cancel);
    m_verificationRow->hide();
    layout->addWidget(m_verificationRow, 1);
    auto* verify = namedButton(tr("Verify"), QStringLiteral("verifyButton"), row);
    connect(verify, &QPushButton::clicked, this, &PreferencesWindow::verifyClicked);
    layout->addWidget(verify, 0, Qt::AlignRight);
    return row;
}

void PreferencesWindow::showSettings() {
    if (auto* button = m_types->button(typeId(m_view)))
        button->setChecked(true);
    m_address->setText(m_view.onlineAddress);
    m_branch->setText(m_view.onlineBranch);
    m_compatibility->setChecked(m_view.maximizeNonStandardManifestCompatibility);
    m_localFolder->setText(m_view.localRepositoryPath.isEmpty() ? tr("None") : m_view.localRepositoryPath);
    m_userFolder->setText(m_view.userManifestFolder.isEmpty() ? tr("None") : m_view.userManifestFolder);
    const bool isOnline = m_view.isOnline();
    m_address->setEnabled(isOnline);
    m_branch->setEnabled(isOnline);
}

void PreferencesWindow::typeClicked(int id) {
    m_view.type = typeValue(id);
    showSettings();
}

void PreferencesWindow::chooseFolder(bool localRepository) {
    const QString title = localRepository ? tr("Choose the local manifest repository folder")
                                          : tr("Choose the user manifest folder");
    const QString folder = m_chooseFolder(this, title);
    if (folder.isEmpty())
        return;
    const auto opened = FolderBookmark::open(FolderBookmark::data(folder));
    if (opened.state != FolderBookmark::State::available) {
        m_services.notices.present(this, ApplicationNotice::folderAccessDenied(), [](const auto&) {});
        return;
    }
    (localRepository ? m_view.localRepositoryPath : m_view.userManifestFolder) = opened.folder;
    showSettings();
}

void PreferencesWindow::removeFolder(bool localRepository) {
    (localRepository ? m_view.localRepositoryPath : m_view.userManifestFolder).clear();
    showSettings();
}

void PreferencesWindow::restoreDefault() {
    m_view.onlineAddress = FactoryDefaults::defaultOnlineRepositoryAddress();
    m_view.onlineBranch = FactoryDefaults::defaultOnlineRepositoryBranch();
    showSettings();
}

void PreferencesWindow::verifyClicked() {
    requestLeave([](bool) {});
}

bool PreferencesWindow::isValidatingRepositorySettings() const {
    return m_verification->isValidatingRepositorySettings();
}

void PreferencesWindow::requestLeave(std::function<void(bool mayLeave)> done) {
    using Outcome = RepositorySettingsVerification::Outcome;
    const auto result = m_verification->verify(m_view);
    switch (result.outcome) {
    case Outcome::unchanged:
    case Outcome::stored:
        done(true);
        return;
    case Outcome::refused:
        m_services.notices.present(this, *result.notice, [](const auto&) {});
        done(false);
        return;
    case Outcome::needsConfirmation:
        m_services.notices.present(this, *result.notice, [this, done](const ApplicationNotice::Reply& reply) {
            const bool use = reply.tag == ApplicationNotice::accept;
            if (use)
                m_verification->confirm();
            done(use);
        });
        return;
    case Outcome::verifying:
        m_pendingLeave = std::move(done);
        m_verificationRow->show();
        if (auto* repository = m_verification->repository()) {
            connect(repository, &GitHubManifestRepository::downloadProgress, m_verificationProgress,
                    [this](int done, int total) {
                        m_verificationProgress->setRange(0, total);
                        m_verificationProgress->setValue(done);
                    });
        }
        return;
    }
}

void PreferencesWindow::verificationFinished(bool stored, const std::optional<ApplicationNotice>& notice) {
    m_verificationRow->hide();
    m_verificationProgress->setRange(0, 0);
    if (stored || !notice) {
        finishLeave(stored);
        return;
    }
    m_services.notices.present(this, *notice, [this](const ApplicationNotice::Reply& reply) {
        switch (reply.tag) {
        case ApplicationNotice::tryAgain:
            requestLeave(std::exchange(m_pendingLeave, {}));
            return;
        case ApplicationNotice::revert:
            revert();
            finishLeave(true);
            return;
        default:
            finishLeave(false);
            return;
        }
    });
}

void PreferencesWindow::cancelVerification() {
    m_verification->cancel();
    m_verificationRow->hide();
    finishLeave(false);
}

void PreferencesWindow::finishLeave(bool mayLeave) {
    if (auto done = std::exchange(m_pendingLeave, {}))
        done(mayLeave);
    if (std::exchange(m_closeAfterVerification, false) && mayLeave)
        close();
}

void PreferencesWindow::revert() {
    m_view = ManifestRepositorySettings::read(m_defaults);
    showSettings();
}

void PreferencesWindow::tabChanged(int index) {
    const int left = std::exchange(m_currentTab, index);
    if (left != static_cast<int>(Pane::manifests))
        return;
    requestLeave([this, index](bool mayLeave) {
        if (mayLeave)
            return;
        // Back to the settings that need attention, without asking again.
        const QSignalBlocker blocker(m_tabs);
        m_tabs->setCurrentIndex(static_cast<int>(Pane::manifests));
        m_currentTab = static_cast<int>(Pane::manifests);
        Q_UNUSED(index);
    });
}

void PreferencesWindow::selectPane(Pane pane) {
    m_tabs->setCurrentIndex(static_cast<int>(pane));
}

void PreferencesWindow::closeEvent(QCloseEvent* event) {
    if (m_verification->isValidatingRepositorySettings()) {
        m_closeAfterVerification = true;
        event->ignore();
        return;
    }
    bool answered = false;
    bool mayLeave = false;
    requestLeave([&answered, &mayLeave](bool may) {
        answered = true;
        mayLeave = may;
    });
    if (answered && mayLeave) {
        event->accept();
        return;
    }
    // A pending verification closes the window when it passes.
    m_closeAfterVerification = !answered;
    event->ignore();
}

// Maintenance

QWidget* PreferencesWindow::buildMaintenancePane() {
    auto* pane = new QWidget(this);
    pane->setObjectName(QStringLiteral("maintenancePane"));
    auto* layout = new QVBoxLayout(pane);
    auto* audit = new QCheckBox(tr("Keep a local log of the payload kinds that would be counted"), pane);
    audit->setObjectName(QStringLiteral("analyticsAuditLogCheckbox"));
    audit->setToolTip(
        tr("Nothing is ever sent. The log is %1").arg(AuditLogAnalyticsSink::standardFilePath()));
    bindCheckBox(audit, DefaultsKey::analyticsAuditLogEnabled);
    layout->addWidget(audit);
    auto* reset =
        namedButton(tr("Reset to Factory Settings…"), QStringLiteral("resetToFactorySettingsButton"), pane);
    connect(reset, &QPushButton::clicked, this, &PreferencesWindow::resetToFactorySettings);
    layout->addWidget(reset, 0, Qt::AlignLeft);
    layout->addStretch();
    return pane;
}

void PreferencesWindow::resetToFactorySettings() {
    m_services.notices.present(
        this, FactoryReset::confirmation(), [this](const ApplicationNotice::Reply& reply) {
            if (reply.tag != ApplicationNotice::accept)
                return;
            FactoryReset(m_defaults, m_services.restarter).run(m_services.closeAllDocuments);
        });
}

} // namespace quorlin
