#include "ui/MessageBoxNoticePresenter.h"

#include <QCheckBox>
#include <QHash>
#include <QMessageBox>
#include <QPushButton>

namespace quorlin {

void MessageBoxNoticePresenter::present(QWidget* window, const ApplicationNotice& notice,
                                        ReplyHandler reply) {
    auto* box = new QMessageBox(window);
    box->setObjectName(QStringLiteral("applicationNotice"));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setIcon(notice.style == ApplicationNotice::Style::warning ? QMessageBox::Warning
                                                                   : QMessageBox::Information);
    box->setText(notice.title);
    box->setInformativeText(notice.informativeText);
    box->setWindowModality(window ? Qt::WindowModal : Qt::ApplicationModal);
    auto tags = std::make_shared<QHash<QAbstractButton*, int>>();
    for (const auto& button : notice.buttons) {
        QPushButton* added = box->addButton(button.title, QMessageBox::ActionRole);
        tags->insert(added, button.tag);
        if (button.keyEquivalent == ApplicationNotice::KeyEquivalent::returnKey)
            box->setDefaultButton(added);
        else if (button.keyEquivalent == ApplicationNotice::KeyEquivalent::escapeKey)
            box->setEscapeButton(added);
    }
    if (!notice.suppressionKey.isEmpty())
        box->setCheckBox(new QCheckBox(QMessageBox::tr("Do not show this message again"), box));
    QObject::connect(box, &QMessageBox::buttonClicked, box, [box, tags, reply](QAbstractButton* clicked) {
        const bool suppress = box->checkBox() && box->checkBox()->isChecked();
        reply({tags->value(clicked), suppress});
    });
    box->open();
}

} // namespace quorlin
