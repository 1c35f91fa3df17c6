#include "ui/PayloadSelectorDialog.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace quorlin {

PayloadSelectorDialog::PayloadSelectorDialog(QWidget* window, const QStringList& payloadTitles,
                                             const QString& buttonTitle, const QString& message,
                                             Chosen chosen)
    : QDialog(window)
    , m_list(new QListWidget(this))
    , m_chosen(std::move(chosen)) {
    setObjectName(dialogObjectName);
    setWindowModality(Qt::WindowModal);
    auto* label = new QLabel(message, this);
    label->setWordWrap(true);
    for (const QString& title : payloadTitles) {
        auto* item = new QListWidgetItem(title, m_list);
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsUserCheckable);
        item->setCheckState(Qt::Unchecked);
    }
    m_list->setAccessibleName(QStringLiteral("Payloads"));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
    m_actionButton = buttons->addButton(buttonTitle, QDialogButtonBox::AcceptRole);
    m_actionButton->setDefault(true);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_list, &QListWidget::itemChanged, this, &PayloadSelectorDialog::updateButton);
    connect(this, &QDialog::accepted, this, [this] {
        const QList<int> indexes = checkedIndexes();
        if (!indexes.isEmpty() && m_chosen)
            m_chosen(indexes);
    });
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(label);
    layout->addWidget(m_list);
    layout->addWidget(buttons);
    updateButton();
}

void PayloadSelectorDialog::setChecked(int index, bool checked) {
    if (QListWidgetItem* item = m_list->item(index))
        item->setCheckState(checked ? Qt::Checked : Qt::Unchecked);
}

QList<int> PayloadSelectorDialog::checkedIndexes() const {
    QList<int> indexes;
    for (int row = 0; row < m_list->count(); ++row) {
        if (m_list->item(row)->checkState() == Qt::Checked)
            indexes.append(row);
    }
    return indexes;
}

void PayloadSelectorDialog::updateButton() {
    m_actionButton->setEnabled(!checkedIndexes().isEmpty());
}

PayloadSelectorDialog* PayloadSelectorDialog::ask(QWidget* window, const QStringList& payloadTitles,
                                                  const QString& buttonTitle, const QString& message,
                                                  Chosen chosen) {
    if (!window || payloadTitles.isEmpty())
        return nullptr;
    auto* dialog = new PayloadSelectorDialog(window, payloadTitles, buttonTitle, message, std::move(chosen));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->open();
    return dialog;
}

} // namespace quorlin
