#pragma once

#include "documents/SavePanelPresenter.h"

#include <QPointer>
#include <QWidget>

namespace quorlin {

// The save panel of a document window: a file dialog with the choice of the
// signing identity below the file name.
class SaveDialogPresenter : public SavePanelPresenter {
public:
    static inline const QString dialogObjectName = QStringLiteral("profileSaveDialog");
    static inline const QString signingPopUpObjectName = QStringLiteral("signingIdentityPopUp");
    static inline const QString doNotSignTitle = QStringLiteral("Do not sign");

    explicit SaveDialogPresenter(QWidget& window)
        : m_window(&window) {}

    std::optional<SavePanelChoice> chooseSavePlace(const SavePanelRequest& request) override;

private:
    QPointer<QWidget> m_window;
};

} // namespace quorlin
