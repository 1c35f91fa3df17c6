#pragma once

#include "documents/DocumentNoticePresenter.h"

#include <QPointer>
#include <QWidget>

class QMessageBox;

namespace quorlin {

// A document's notices as message boxes over its window: window-modal, so
// other documents stay usable, answered when the user clicks.
class WindowNoticePresenter : public DocumentNoticePresenter {
public:
    static inline const QString noticeObjectName = QStringLiteral("documentNotice");
    static inline const QString errorObjectName = QStringLiteral("documentError");

    explicit WindowNoticePresenter(QWidget& window)
        : m_window(&window) {}

    void present(const DocumentNotice& notice, ReplyHandler reply) override;
    void presentError(const DocumentError& error) override;

    // An error of any source, over `window`; shared by the document controller.
    static QMessageBox* showError(QWidget* window, const QString& title, const QString& words);

private:
    QPointer<QWidget> m_window;
};

} // namespace quorlin
