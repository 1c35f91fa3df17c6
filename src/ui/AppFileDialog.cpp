#include "ui/AppFileDialog.h"

#include <QFileInfo>
#include <QStandardPaths>

namespace quorlin {

AppFileDialog::AppFileDialog(QWidget* parent)
    : QFileDialog(parent) {
    // The platform's own panel can't choose a folder and files at once.
    setOption(QFileDialog::DontUseNativeDialog);
    setFileMode(QFileDialog::ExistingFiles);
    setWindowTitle(QStringLiteral("Inspect App"));
    setLabelText(QFileDialog::Accept, QStringLiteral("Inspect"));
    setDirectory(QStandardPaths::writableLocation(QStandardPaths::HomeLocation));
}

void AppFileDialog::accept() {
    const QStringList selected = selectedFiles();
    if (selected.size() == 1 && selected.first().endsWith(QLatin1String(".app")) &&
        QFileInfo(selected.first()).isDir()) {
        m_chosenFolders = selected;
        done(QDialog::Accepted);
        return;
    }
    QFileDialog::accept();
}

QStringList AppFileDialog::choose(QWidget* parent) {
    AppFileDialog dialog(parent);
    if (dialog.exec() != QDialog::Accepted)
        return {};
    return dialog.m_chosenFolders.isEmpty() ? dialog.selectedFiles() : dialog.m_chosenFolders;
}

} // namespace quorlin
