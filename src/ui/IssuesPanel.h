#pragma once

#include "workspace/DocumentIssueList.h"

#include <QDockWidget>
#include <QList>

class QTreeWidget;

namespace quorlin {

// The list of every error of a document: section, key and message on each
// line; activating a line asks to be taken to its field.
class IssuesPanel : public QDockWidget {
    Q_OBJECT

public:
    explicit IssuesPanel(QWidget* parent = nullptr);

    void setIssues(const QList<DocumentIssueList::Issue>& issues);
    const QList<DocumentIssueList::Issue>& issues() const { return m_issues; }
    QTreeWidget* list() const { return m_list; }

    static QString title();
    static QString noIssuesText();

Q_SIGNALS:
    void issueActivated(const DocumentIssueList::Location& location);

private:
    QTreeWidget* m_list;
    QList<DocumentIssueList::Issue> m_issues;
};

} // namespace quorlin
