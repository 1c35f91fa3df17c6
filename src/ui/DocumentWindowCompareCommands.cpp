// The window's comparison of its document with another file or with the
// saved version, and the way from a difference back to its field.
#include "ui/DocumentWindow.h"

#include "documents/SignatureComparison.h"
#include "documents/SigningServices.h"
#include "model/ProfileComparison.h"
#include "plist/PlistReader.h"
#include "ui/ContentView.h"
#include "ui/FieldRowView.h"
#include "ui/PayloadFormView.h"
#include "ui/ProfileComparisonWindow.h"
#include "ui/SectionFormView.h"
#include "ui/WindowNoticePresenter.h"
#include "workspace/PFMSection.h"
#include "workspace/PayloadViewController.h"

#include <QAction>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenu>
#include <QScrollArea>
#include <QStatusBar>
#include <QTimer>

namespace quorlin {

namespace {

const QString kRootType = QStringLiteral("Configuration");

struct ComparedFile {
    plist::Dictionary root;
    std::optional<SignedMessage> signature;
};

// The file as its bytes hold it, the content of a signed one; nothing for a
// file that holds no profile.
std::optional<ComparedFile> readComparedFile(const QString& filePath) {
    QFile file(filePath);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QByteArray bytes = file.readAll();
    ComparedFile compared{{}, SigningServices().decodeSignedMessage(bytes)};
    const auto read = plist::PlistReader::read(compared.signature ? compared.signature->content : bytes);
    if (!read || !read->root.dictionary() || read->root.dictionary()->string("PayloadType") != kRootType)
        return std::nullopt;
    compared.root = *read->root.dictionary();
    return compared;
}

// The document signs on save with the identity it names, if any.
std::optional<SignedMessage> documentSignature(const Profile& profile) {
    const auto& name = profile.saveSignedWithCommonName();
    if (!name || name->isEmpty())
        return std::nullopt;
    return SignedMessage{{}, {*name}, {}};
}

PayloadFormView* payloadViewNamed(const SectionFormView& form, const QString& displayName) {
    for (PayloadFormView* view : form.payloadViews()) {
        const auto payload = view->isFormAlive() ? view->form().payload() : nullptr;
        if (payload && payload->displayName().value_or(QString()) == displayName)
            return view;
    }
    return form.payloadViews().isEmpty() ? nullptr : form.payloadViews().first();
}

} // namespace

void DocumentWindow::buildCompareActions() {
    m_compareWithAction = new QAction(QStringLiteral("Compare &With…"), this);
    connect(m_compareWithAction, &QAction::triggered, this, [this] {
        const QString chosen =
            m_chooseComparisonFile
                ? m_chooseComparisonFile()
                : QFileDialog::getOpenFileName(
                      this, QStringLiteral("Compare With"), QString(),
                      QStringLiteral("Configuration Profiles (*.mobileconfig);;All Files (*)"));
        if (!chosen.isEmpty())
            compareWith(chosen);
    });
    m_compareWithSavedAction = new QAction(QStringLiteral("Compare With &Saved"), this);
    connect(m_compareWithSavedAction, &QAction::triggered, this, [this] {
        if (m_document->filePath())
            compareWith(*m_document->filePath());
    });
}

void DocumentWindow::compareWith(const QString& filePath) {
    const auto compared = readComparedFile(filePath);
    const QString name = QFileInfo(filePath).fileName();
    if (!compared) {
        WindowNoticePresenter::showError(
            this, QStringLiteral("The document could not be compared."),
            QStringLiteral("The file “%1” can't be read as a configuration profile.").arg(name));
        return;
    }
    const Profile& profile = *m_document->profile();
    QList<ProfileDifference> differences =
        ProfileComparison(profile.domains()).compare(compared->root, profile.profileDictionary());
    if (const auto signature = SignatureComparison::compare(compared->signature, documentSignature(profile)))
        differences << *signature;
    auto* window =
        new ProfileComparisonWindow(QStringLiteral("%1 — Compared With %2").arg(windowTitle(), name), this);
    window->setDifferences(differences);
    connect(window, &ProfileComparisonWindow::differenceChosen, this, &DocumentWindow::showDifference);
    window->show();
}

void DocumentWindow::showDifference(const ProfileDifference& difference) {
    const QString domain = difference.payloadType == kRootType ? QString() : difference.payloadType;
    for (PFMSection* section : m_sections.arrangedObjects()) {
        if (section->sectionKind() != PFMSection::Kinds::domain || !section->domains().contains(domain))
            continue;
        selectSection(section);
        // The new form shows and lays out once the event loop turns.
        QTimer::singleShot(0, this, [this, difference] { bringIntoView(difference); });
        return;
    }
    statusBar()->showMessage(
        QStringLiteral("The section of “%1” isn't in the side-bar.").arg(difference.payloadTitle), 5000);
}

void DocumentWindow::bringIntoView(const ProfileDifference& difference) {
    SectionFormView* form = m_content->sectionFormView();
    PayloadFormView* payloadView = form ? payloadViewNamed(*form, difference.payloadName) : nullptr;
    if (!payloadView)
        return;
    const QString keyName = difference.keyPath.section(u'.', 0, 0).section(u'[', 0, 0);
    FieldRowView* row = keyName.isEmpty() ? nullptr : payloadView->rowForKey(keyName);
    form->scrollArea()->ensureWidgetVisible(row ? static_cast<QWidget*>(row) : payloadView);
    if (row && !row->instrumentWidgets().isEmpty())
        row->instrumentWidgets().first()->setFocus(Qt::OtherFocusReason);
}

} // namespace quorlin
