#include "ui/WindowNoticePresenter.h"

#include <QCheckBox>
#include <QHash>
#include <QMessageBox>
#include <QPushButton>

namespace quorlin {

namespace {

QMessageBox::ButtonRole roleOf(DocumentNotice::KeyEquivalent key) {
    switch (key) {
    case DocumentNotice::KeyEquivalent::returnKey:
        return QMessageBox::AcceptRole;
    case DocumentNotice::KeyEquivalent::escapeKey:
        return QMessageBox::RejectRole;
    case DocumentNotice::KeyEquivalent::none:
        break;
    }
    return QMessageBox::ActionRole;
}

} // namespace

void WindowNoticePresenter::present(const DocumentNotice& notice, ReplyHandler reply) {
    auto* box = new QMessageBox(m_window);
    box->setObjectName(noticeObjectName);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setWindowModality(Qt::WindowModal);
    box->setIcon(notice.style == DocumentNotice::Style::warning ? QMessageBox::Warning
                                                                : QMessageBox::Information);
    box->setText(notice.title);
    box->setInformativeText(notice.informativeText);
    QHash<QAbstractButton*, int> tags;
    for (const DocumentNotice::Button& button : notice.buttons) {
        QPushButton* pushButton = box->addButton(button.title, roleOf(button.keyEquivalent));
        tags.insert(pushButton, button.tag);
        if (button.keyEquivalent == DocumentNotice::KeyEquivalent::returnKey)
            box->setDefaultButton(pushButton);
        else if (button.keyEquivalent == DocumentNotice::KeyEquivalent::escapeKey)
            box->setEscapeButton(pushButton);
    }
    if (!notice.suppressionKey.isEmpty())
        box->setCheckBox(new QCheckBox(notice.suppressionTitle, box));
    // A box closed without a button (the window manager's close) answers like
    // the escape button: tag 0 is always the harmless reply.
    QObject::connect(box, &QMessageBox::finished, box, [box, tags, reply = std::move(reply)] {
        NoticeReply answer;
        answer.tag = tags.value(box->clickedButton(), 0);
        answer.suppress = box->checkBox() && box->checkBox()->isChecked();
        if (reply)
            reply(answer);
    });
    box->open();
}

void WindowNoticePresenter::presentError(const DocumentError& error) {
    showError(m_window, QStringLiteral("The document could not be saved."), error.words);
}

QMessageBox* WindowNoticePresenter::showError(QWidget* window, const QString& title, const QString& words) {
    auto* box = new QMessageBox(window);
    box->setObjectName(errorObjectName);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setWindowModality(window ? Qt::WindowModal : Qt::ApplicationModal);
    box->setIcon(QMessageBox::Warning);
    box->setText(title);
    if (words != title)
        box->setInformativeText(words);
    box->setStandardButtons(QMessageBox::Ok);
    box->open();
    return box;
}

} // namespace quorlin
