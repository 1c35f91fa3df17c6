#include "ui/InfoRowView.h"

#include <QApplication>
#include <QClipboard>
#include <QGridLayout>
#include <QLabel>
#include <QToolButton>

namespace quorlin {

InfoRowView::InfoRowView(const QString& qualifier, const QString& information, QWidget* parent)
    : QWidget(parent)
    , m_information(information) {
    m_qualifierView = new QLabel(qualifier, this);
    m_qualifierView->setObjectName(QStringLiteral("qualifierView"));
    QFont bold = m_qualifierView->font();
    bold.setBold(true);
    m_qualifierView->setFont(bold);
    m_infoView = new QLabel(information, this);
    m_infoView->setObjectName(QStringLiteral("infoView"));
    m_infoView->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_infoView->setWordWrap(true);
    m_copyButton = new QToolButton(this);
    m_copyButton->setObjectName(QStringLiteral("copyButton"));
    m_copyButton->setText(QStringLiteral("Copy"));
    m_copyButton->setAccessibleName(QStringLiteral("Copy %1").arg(qualifier));
    m_copyButton->setVisible(false);
    connect(m_copyButton, &QToolButton::clicked, this, &InfoRowView::copy);
    m_layout = new QGridLayout(this);
    m_layout->setContentsMargins(0, 0, 0, 0);
    arrange();
}

bool InfoRowView::isCopyButtonShowing() const {
    return !m_copyButton->isHidden();
}

bool InfoRowView::informationIncludesNewLineCharacters() const {
    return m_information.contains(QLatin1Char('\n'));
}

bool InfoRowView::widthIsSufficient() const {
    const int needed = m_qualifierView->sizeHint().width() +
                       m_infoView->fontMetrics().horizontalAdvance(m_information) +
                       m_copyButton->sizeHint().width() + 2 * m_layout->horizontalSpacing();
    return width() == 0 || needed <= width();
}

void InfoRowView::copy() {
    QApplication::clipboard()->setText(m_information);
}

void InfoRowView::enterEvent(QEnterEvent* event) {
    m_copyButton->setVisible(true);
    QWidget::enterEvent(event);
}

void InfoRowView::leaveEvent(QEvent* event) {
    m_copyButton->setVisible(false);
    QWidget::leaveEvent(event);
}

void InfoRowView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    arrange();
}

// Side by side while both fit on one line, the qualifier above otherwise.
void InfoRowView::arrange() {
    const bool vertical = informationIncludesNewLineCharacters() || !widthIsSufficient();
    if (vertical == m_vertical && m_layout->count() > 0)
        return;
    m_vertical = vertical;
    m_layout->removeWidget(m_qualifierView);
    m_layout->removeWidget(m_infoView);
    m_layout->removeWidget(m_copyButton);
    m_layout->setColumnStretch(1, 0);
    m_layout->setColumnStretch(2, 0);
    if (vertical) {
        m_layout->addWidget(m_qualifierView, 0, 0);
        m_layout->addWidget(m_copyButton, 0, 1, Qt::AlignRight);
        m_layout->addWidget(m_infoView, 1, 0, 1, 2);
        m_layout->setColumnStretch(0, 1);
    } else {
        m_layout->addWidget(m_qualifierView, 0, 0, Qt::AlignTop);
        m_layout->addWidget(m_infoView, 0, 1);
        m_layout->addWidget(m_copyButton, 0, 2, Qt::AlignTop);
        m_layout->setColumnStretch(0, 0);
        m_layout->setColumnStretch(1, 1);
    }
}

} // namespace quorlin
