#include "ui/PassphraseDialog.h"

#include <QApplication>
#include <QInputDialog>
#include <QLineEdit>

namespace quorlin {

std::optional<QString> PassphraseDialog::passphraseFor(const QString& identityName) {
    QInputDialog dialog(QApplication::activeWindow());
    dialog.setObjectName(dialogObjectName);
    dialog.setWindowTitle(QStringLiteral("Signing Identity Passphrase"));
    dialog.setLabelText(
        QStringLiteral("Enter the passphrase of the signing identity “%1”:").arg(identityName));
    dialog.setInputMode(QInputDialog::TextInput);
    dialog.setTextEchoMode(QLineEdit::Password);
    dialog.setOkButtonText(QStringLiteral("Sign"));
    dialog.setWindowModality(Qt::WindowModal);
    if (dialog.exec() != QDialog::Accepted)
        return std::nullopt;
    return dialog.textValue();
}

} // namespace quorlin
