// The window's commands on encrypted payloads: choosing the certificates the
// payloads are sealed for on save, ceasing to seal them, and taking in the
// payloads that decryption opens.
#include "ui/DocumentWindow.h"

#include "ui/WindowNoticePresenter.h"

#include <QFileDialog>
#include <QStatusBar>

namespace quorlin {

namespace {

const QString encryptFailedTitle = QStringLiteral("The payloads can't be encrypted for these certificates.");

} // namespace

void DocumentWindow::buildEncryptionActions() {
    m_encryptForAction = new QAction(QStringLiteral("E&ncrypt for…"), this);
    m_encryptForAction->setToolTip(QStringLiteral("Encrypt the payloads for devices' certificates on save"));
    connect(m_encryptForAction, &QAction::triggered, this, &DocumentWindow::chooseRecipients);
    m_doNotEncryptAction = new QAction(QStringLiteral("Save &Unencrypted"), this);
    m_doNotEncryptAction->setToolTip(QStringLiteral("Save the payloads in the open again"));
    connect(m_doNotEncryptAction, &QAction::triggered, this, [this] { encryptFor({}); });
}

void DocumentWindow::chooseRecipients() {
    auto* dialog = new QFileDialog(this);
    dialog->setObjectName(recipientsDialogObjectName);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowModality(Qt::WindowModal);
    dialog->setFileMode(QFileDialog::ExistingFiles);
    dialog->setNameFilters(
        {QStringLiteral("Certificates (*.pem *.crt *.cer *.der)"), QStringLiteral("All files (*)")});
    dialog->setLabelText(QFileDialog::Accept, QStringLiteral("Encrypt"));
    dialog->setWindowTitle(
        QStringLiteral("Select the certificates of the devices to encrypt the payloads for"));
    connect(dialog, &QFileDialog::filesSelected, this, &DocumentWindow::encryptFor);
    dialog->open();
}

// The recipients aren't keys of the profile, so the history doesn't see them.
void DocumentWindow::encryptFor(const QStringList& certificateFiles) {
    const QList<QByteArray> before = m_document->profile()->encryptForCertificates();
    const auto applied = m_document->encryptFor(certificateFiles);
    if (!applied) {
        WindowNoticePresenter::showError(this, encryptFailedTitle, applied.error().words);
        return;
    }
    const qsizetype count = m_document->profile()->encryptForCertificates().size();
    statusBar()->showMessage(
        count == 0
            ? QStringLiteral("The payloads will be saved unencrypted.")
            : QStringLiteral("The payloads will be encrypted for %1 certificate(s) on save.").arg(count));
    if (m_document->profile()->encryptForCertificates() != before)
        countUntrackedEdit();
    updateCommandStates();
}

// Decryption adds the payloads to the profile by itself; their sections follow.
void DocumentWindow::showDecryptedPayloads() {
    const Profile::Pointer& profile = m_document->profile();
    for (PFMSection* section : m_sections.content()) {
        if (section->sectionKind() != PFMSection::Kinds::unfamiliar)
            section->refresh(profile);
    }
    m_sections.addUnfamiliarSections(*profile);
    if (m_document->shouldBeValueValidatedOnLaunch() == true)
        validateAllSections();
    updateCommandStates();
}

void DocumentWindow::updateEncryptionStates() {
    const Profile::Pointer& profile = m_document->profile();
    m_encryptForAction->setEnabled(profile && !profile->encryptedPayloadContent());
    m_doNotEncryptAction->setEnabled(profile && !profile->encryptForCertificates().isEmpty());
}

} // namespace quorlin
