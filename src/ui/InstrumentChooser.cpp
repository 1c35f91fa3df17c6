#include "ui/InstrumentChooser.h"

#include <QFileDialog>
#include <QInputDialog>

namespace quorlin {

namespace {

class DialogInstrumentChooser : public InstrumentChooser {
public:
    std::optional<QString> chooseFileToOpen(QWidget* parent, const QStringList& extensions) override {
        QStringList patterns;
        for (const QString& extension : extensions)
            patterns.append(QStringLiteral("*.") + extension);
        const QString filter = patterns.isEmpty() ? QString() : patterns.join(QLatin1Char(' '));
        return nonEmpty(QFileDialog::getOpenFileName(parent, QString(), QString(), filter));
    }

    std::optional<QString> chooseFileToSave(QWidget* parent, const QString& suggestedName) override {
        return nonEmpty(QFileDialog::getSaveFileName(parent, QString(), suggestedName));
    }

    std::optional<QString> chooseBundleId(QWidget* parent) override {
        bool accepted = false;
        const QString text = QInputDialog::getText(parent, QString(), QStringLiteral("Bundle Identifier:"),
                                                   QLineEdit::Normal, QString(), &accepted);
        return accepted ? nonEmpty(text.trimmed()) : std::nullopt;
    }

private:
    static std::optional<QString> nonEmpty(const QString& text) {
        return text.isEmpty() ? std::nullopt : std::optional<QString>(text);
    }
};

} // namespace

std::shared_ptr<InstrumentChooser> InstrumentChooser::dialogs() {
    return std::make_shared<DialogInstrumentChooser>();
}

} // namespace quorlin
