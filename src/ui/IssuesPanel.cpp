#include "ui/IssuesPanel.h"

#include <QHeaderView>
#include <QTreeWidget>

namespace quorlin {

IssuesPanel::IssuesPanel(QWidget* parent)
    : QDockWidget(title(), parent)
    , m_list(new QTreeWidget(this)) {
    setObjectName(QStringLiteral("issuesPanel"));
    m_list->setObjectName(QStringLiteral("issuesList"));
    m_list->setAccessibleName(title());
    m_list->setRootIsDecorated(false);
    m_list->setUniformRowHeights(true);
    m_list->setHeaderLabels({tr("Section"), tr("Field"), tr("Message")});
    m_list->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_list->header()->setStretchLastSection(true);
    setWidget(m_list);
    const auto activate = [this](QTreeWidgetItem* item) {
        const int index = item ? item->data(0, Qt::UserRole).toInt() : -1;
        if (index >= 0 && index < m_issues.size())
            Q_EMIT issueActivated(m_issues.at(index).location);
    };
    connect(m_list, &QTreeWidget::itemActivated, this, activate);
    connect(m_list, &QTreeWidget::itemClicked, this, activate);
}

QString IssuesPanel::title() {
    return tr("Issues");
}

QString IssuesPanel::noIssuesText() {
    return tr("No errors");
}

void IssuesPanel::setIssues(const QList<DocumentIssueList::Issue>& issues) {
    m_issues = issues;
    m_list->clear();
    setWindowTitle(issues.isEmpty() ? title() : tr("Issues (%1)").arg(issues.size()));
    if (issues.isEmpty()) {
        auto* item = new QTreeWidgetItem(m_list, {noIssuesText()});
        item->setData(0, Qt::UserRole, -1);
        item->setFlags(Qt::NoItemFlags);
        return;
    }
    for (int index = 0; index < issues.size(); ++index) {
        const DocumentIssueList::Issue& issue = issues.at(index);
        const QString section = issue.payloadTitle.isEmpty()
                                    ? issue.sectionTitle
                                    : QStringLiteral("%1 – %2").arg(issue.sectionTitle, issue.payloadTitle);
        auto* item = new QTreeWidgetItem(m_list, {section, issue.keyTitle, issue.message});
        item->setData(0, Qt::UserRole, index);
        item->setToolTip(2, issue.message);
        item->setIcon(0, QIcon::fromTheme(QStringLiteral("dialog-error")));
    }
}

} // namespace quorlin
