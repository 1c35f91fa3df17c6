#include "ui/InstrumentChooser.h"

#include "apptools/iTunesQueryHelper.h"
#include "ui/AppSelectorSheet.h"

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
        AppSelectorSheet sheet(apptools::iTunesQueryHelper::shared(), parent);
        if (sheet.exec() != QDialog::Accepted || !sheet.chosenBundleId())
            return std::nullopt;
        return nonEmpty(*sheet.chosenBundleId());
    }

    std::optional<apptools::ChosenApp> chooseApp(QWidget* parent) override {
        AppSelectorSheet sheet(apptools::iTunesQueryHelper::shared(), parent);
        if (sheet.exec() != QDialog::Accepted)
            return std::nullopt;
        auto app = sheet.chosenApp();
        return app && !app->bundleId.isEmpty() ? app : std::nullopt;
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
