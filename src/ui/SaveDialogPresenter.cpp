#include "ui/SaveDialogPresenter.h"

#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QGridLayout>
#include <QLabel>

namespace quorlin {

namespace {

const QString profileExtension = QStringLiteral("mobileconfig");

QComboBox* addSigningPopUp(QFileDialog& dialog, const SavePanelRequest& request) {
    auto* popUp = new QComboBox(&dialog);
    popUp->setObjectName(SaveDialogPresenter::signingPopUpObjectName);
    popUp->setAccessibleName(QStringLiteral("Signing identity"));
    popUp->addItem(SaveDialogPresenter::doNotSignTitle);
    popUp->addItems(request.availableIdentities);
    const int selected = request.signingCommonName ? popUp->findText(*request.signingCommonName) : -1;
    popUp->setCurrentIndex(selected > 0 ? selected : 0);
    auto* label = new QLabel(QStringLiteral("Sign with:"), &dialog);
    label->setBuddy(popUp);
    // Qt's own dialog lays itself out in a grid; a row below the file type
    // keeps the choice next to the name it applies to.
    if (auto* grid = qobject_cast<QGridLayout*>(dialog.layout())) {
        const int row = grid->rowCount();
        grid->addWidget(label, row, 0);
        grid->addWidget(popUp, row, 1);
    }
    return popUp;
}

QString startingPath(const SavePanelRequest& request) {
    if (request.currentFilePath)
        return *request.currentFilePath;
    const QString name = request.suggestedName.isEmpty() ? QStringLiteral("Untitled") : request.suggestedName;
    return QDir::home().filePath(name + u'.' + profileExtension);
}

} // namespace

std::optional<SavePanelChoice> SaveDialogPresenter::chooseSavePlace(const SavePanelRequest& request) {
    QFileDialog dialog(m_window, QStringLiteral("Save"));
    dialog.setObjectName(dialogObjectName);
    // The platform's own dialog can't hold the signing choice.
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setNameFilter(QStringLiteral("Configuration Profiles (*.%1)").arg(profileExtension));
    dialog.setDefaultSuffix(profileExtension);
    dialog.setWindowModality(Qt::WindowModal);
    const QFileInfo start(startingPath(request));
    dialog.setDirectory(start.absolutePath());
    dialog.selectFile(start.fileName());
    QComboBox* popUp = addSigningPopUp(dialog, request);

    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return std::nullopt;
    SavePanelChoice choice;
    choice.filePath = dialog.selectedFiles().first();
    // The first item stores the empty name: "Do not sign" is a choice too.
    choice.signingCommonName = popUp->currentIndex() <= 0 ? QString() : popUp->currentText();
    return choice;
}

} // namespace quorlin
