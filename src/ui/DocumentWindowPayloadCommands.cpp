// The window's commands on the payloads of a section: adding (also from a
// file), removing, populating defaults, exporting, and the section's
// documentation. Apart from the window's set-up, which is long enough alone.
#include "ui/DocumentWindow.h"

#include "fields/FileChoice.h"
#include "plist/Utilities.h"
#include "ui/CommandAvailability.h"
#include "ui/ContentView.h"
#include "ui/PayloadSelectorDialog.h"
#include "ui/SectionFormView.h"
#include "workspace/PFMSectionViewController.h"
#include "workspace/PayloadViewController.h"
#include "workspace/SectionFilter.h"

#include <QDesktopServices>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QPointer>
#include <QProcess>
#include <QUrl>

namespace quorlin {

namespace {

const QString removeTitle = QStringLiteral("Remove");
const QString removeMessage = QStringLiteral(
    "The section contains multiple payloads, please select the ones that you would like to remove.");
const QString populateTitle = QStringLiteral("Populate Default Values");
const QString populateMessage =
    QStringLiteral("The section contains multiple payloads, please select the ones "
                   "that you would like to populate default values on.");
const QString exportTitle = QStringLiteral("Export");
const QString exportMessage = QStringLiteral(
    "The section contains multiple payloads, please select the one that you would like to export.");

void showFileIncompatible(QWidget* window) {
    WindowNoticePresenter::showError(window, FileChoice::incompatibleTitle(), FileChoice::incompatibleText());
}

// "Select a certificate to add to the configuration profile (.cer, .crt, or .der)"
QString addFromFileMessage(const PFMSection& section) {
    QStringList extensions;
    for (const QString& extension : section.allowedFileExtensions())
        extensions.append(QLatin1Char('.') + extension);
    const QString listed = extensions.isEmpty()
                               ? QString()
                               : QStringLiteral(" (%1)").arg(Utilities::joinedTermSeries(extensions, true));
    return QStringLiteral("Select a %1 to add to the configuration profile%2")
        .arg(section.sectionProperties().title.toLower(), listed);
}

} // namespace

void DocumentWindow::addPayload(PFMSection& section) {
    if (!CommandAvailability::addPayload(&section).enabled)
        return;
    switch (m_history.addPayload(section, m_document->profile())) {
    case PFMSection::AddPayloadResult::fileNeeded:
        addPayloadFromFile(section);
        break;
    case PFMSection::AddPayloadResult::fileIncompatible:
        showFileIncompatible(this);
        break;
    case PFMSection::AddPayloadResult::added:
    case PFMSection::AddPayloadResult::refused:
        break;
    }
    section.setFieldDisplaySettings(m_displaySettings);
    selectSection(&section);
    updateCommandStates();
}

void DocumentWindow::addPayloadFromFile(PFMSection& section) {
    QStringList extensions;
    for (const QString& extension : section.allowedFileExtensions())
        extensions.append(QStringLiteral("*.") + extension);
    auto* dialog = new QFileDialog(this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowModality(Qt::WindowModal);
    dialog->setFileMode(QFileDialog::ExistingFile);
    if (!extensions.isEmpty())
        dialog->setNameFilter(extensions.join(u' '));
    dialog->setLabelText(QFileDialog::Accept, QStringLiteral("Add"));
    dialog->setWindowTitle(addFromFileMessage(section));
    QPointer<PFMSection> target(&section);
    connect(dialog, &QFileDialog::fileSelected, this, [this, target](const QString& filePath) {
        if (!target)
            return;
        const auto result = m_history.addPayload(*target, m_document->profile(), filePath);
        if (result == PFMSection::AddPayloadResult::fileIncompatible)
            showFileIncompatible(this);
        target->setFieldDisplaySettings(m_displaySettings);
        updateCommandStates();
    });
    dialog->open();
}

QStringList DocumentWindow::payloadTitles(const PFMSection& section) const {
    QStringList titles;
    if (PFMSectionViewController* form = section.sectionViewController()) {
        for (const auto& payloadForm : form->payloadControllers())
            titles.append(payloadForm->title());
    }
    return titles;
}

void DocumentWindow::removePayloads(PFMSection& section, const QList<int>& payloadIndexes) {
    if (!CommandAvailability::removePayload(&section).enabled)
        return;
    if (section.sectionKind() == PFMSection::Kinds::unfamiliar) {
        m_history.removeUnfamiliarPayloads(m_sections, section, m_document->profile());
        updateCommandStates();
        return;
    }
    QList<int> indexes = payloadIndexes;
    if (indexes.isEmpty() && section.payloadsConfigured() == 1)
        indexes = {0};
    if (indexes.isEmpty()) {
        QPointer<PFMSection> target(&section);
        PayloadSelectorDialog::ask(this, payloadTitles(section), removeTitle, removeMessage,
                                   [this, target](const QList<int>& chosen) {
                                       if (target)
                                           removePayloads(*target, chosen);
                                   });
        return;
    }
    m_history.removePayloads(section, m_document->profile(), indexes);
    updateCommandStates();
}

void DocumentWindow::populateDefaultValues(PFMSection& section, const QList<int>& payloadIndexes) {
    PFMSectionViewController* form = section.sectionViewController();
    if (!form || !CommandAvailability::populateOrExport(&section).enabled)
        return;
    QList<int> indexes = payloadIndexes;
    if (indexes.isEmpty() && form->payloadControllers().size() == 1)
        indexes = {0};
    if (indexes.isEmpty()) {
        QPointer<PFMSection> target(&section);
        PayloadSelectorDialog::ask(this, payloadTitles(section), populateTitle, populateMessage,
                                   [this, target](const QList<int>& chosen) {
                                       if (target)
                                           populateDefaultValues(*target, chosen);
                                   });
        return;
    }
    for (int index : indexes) {
        if (index >= 0 && size_t(index) < form->payloadControllers().size())
            m_history.populateDefaults(*form->payloadControllers()[size_t(index)]);
    }
}

void DocumentWindow::exportPayload(PFMSection& section) {
    if (m_selectedSection && m_selectedSection->sectionViewController())
        m_selectedSection->sectionViewController()->recountErrors();
    if (!CommandAvailability::populateOrExport(&section).enabled)
        return;
    if (section.payloadsConfigured() == 1) {
        exportPayloadAt(section, 0);
        return;
    }
    QPointer<PFMSection> target(&section);
    PayloadSelectorDialog::ask(this, payloadTitles(section), exportTitle, exportMessage,
                               [this, target](const QList<int>& chosen) {
                                   if (target)
                                       exportPayloadAt(*target, chosen.first());
                               });
}

void DocumentWindow::exportPayloadAt(PFMSection& section, int index) {
    PFMSectionViewController* form = section.sectionViewController();
    if (!form || index < 0 || size_t(index) >= form->payloadControllers().size())
        return;
    const Payload::Pointer payload = form->payloadControllers()[size_t(index)]->payload();
    if (!payload)
        return;
    auto* dialog = new QFileDialog(this, QStringLiteral("Export Payload"));
    dialog->setObjectName(QStringLiteral("exportPayloadDialog"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowModality(Qt::WindowModal);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setNameFilter(QStringLiteral("Property Lists (*.plist)"));
    dialog->setDefaultSuffix(QStringLiteral("plist"));
    dialog->setLabelText(QFileDialog::Accept, QStringLiteral("Export"));
    dialog->selectFile(payload->domainPrototype().domainString() + QStringLiteral(".plist"));
    connect(dialog, &QFileDialog::fileSelected, this, [this, payload](const QString& filePath) {
        if (!payload->exportToFile(filePath, false)) {
            WindowNoticePresenter::showError(
                this, QStringLiteral("Could not save plist file"),
                QStringLiteral("The plist file could not be written in the provided location."));
        }
    });
    dialog->open();
}

// The profile added or removed its removal password payloads by itself.
void DocumentWindow::followRemovalPasswordPayloads() {
    for (const auto& section : m_sectionCollection.sections()) {
        if (!section->domains().contains(QStringLiteral("com.apple.profileRemovalPassword")))
            continue;
        section->refresh(m_document->profile());
        section->setFieldDisplaySettings(m_displaySettings);
        updateCommandStates();
        return;
    }
}

void DocumentWindow::showInFileManager() {
    const auto& filePath = m_document->filePath();
    if (!filePath)
        return;
    // The desktop's file manager selects the file when asked over its bus;
    // without one, its folder opens.
    const QString url = QUrl::fromLocalFile(*filePath).toString();
    const bool asked = QProcess::startDetached(
        QStringLiteral("dbus-send"),
        {QStringLiteral("--session"), QStringLiteral("--dest=org.freedesktop.FileManager1"),
         QStringLiteral("--type=method_call"), QStringLiteral("/org/freedesktop/FileManager1"),
         QStringLiteral("org.freedesktop.FileManager1.ShowItems"), QStringLiteral("array:string:") + url,
         QStringLiteral("string:")});
    if (!asked)
        QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(*filePath).absolutePath()));
}

void DocumentWindow::openDocumentation() {
    if (!m_selectedSection)
        return;
    // Sections of several domains have a page for each.
    const auto& urls = m_selectedSection->sectionProperties().documentationURLs;
    for (const QUrl& url : urls.value_or(QList<QUrl>()))
        QDesktopServices::openUrl(url);
}

} // namespace quorlin
