#pragma once

#include "apptools/ChosenApp.h"

#include <QString>
#include <QStringList>

#include <memory>
#include <optional>

class QWidget;

namespace quorlin {

// Where a file-based instrument or a table asks the user for a file or an
// app. The window's instruments use dialogs; tests answer without any.
class InstrumentChooser {
public:
    virtual ~InstrumentChooser() = default;

    // A file to read, of one of the extensions when any are given; nothing
    // when the user cancelled.
    virtual std::optional<QString> chooseFileToOpen(QWidget* parent, const QStringList& extensions) = 0;
    virtual std::optional<QString> chooseFileToSave(QWidget* parent, const QString& suggestedName) = 0;
    // A bundle identifier (or an app's path) to store.
    virtual std::optional<QString> chooseBundleId(QWidget* parent) = 0;
    // The app for a field, with what else is known of it; by default the
    // identifier alone.
    virtual std::optional<apptools::ChosenApp> chooseApp(QWidget* parent) {
        const auto bundleId = chooseBundleId(parent);
        return bundleId ? std::optional<apptools::ChosenApp>(apptools::ChosenApp{*bundleId, {}, {}, {}, {}})
                        : std::nullopt;
    }

    // The one that opens the standard dialogs.
    static std::shared_ptr<InstrumentChooser> dialogs();
};

} // namespace quorlin
