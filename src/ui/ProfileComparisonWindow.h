#pragma once

#include "model/ProfileDifference.h"

#include <QList>
#include <QWidget>

class QLabel;
class QTreeWidget;
class QTreeWidgetItem;

namespace quorlin {

// The differences between a document and another version of it, grouped by
// payload; choosing one asks the document window to bring its field into view.
class ProfileComparisonWindow : public QWidget {
    Q_OBJECT

public:
    ProfileComparisonWindow(const QString& title, QWidget* parent = nullptr);

    // Replaces what the window lists.
    void setDifferences(const QList<ProfileDifference>& differences);
    const QList<ProfileDifference>& differences() const { return m_differences; }
    QTreeWidget* differenceList() const { return m_list; }
    QLabel* summaryLabel() const { return m_summary; }

Q_SIGNALS:
    void differenceChosen(const quorlin::ProfileDifference& difference);

private:
    void choose(QTreeWidgetItem* item);

    QList<ProfileDifference> m_differences;
    QLabel* m_summary = nullptr;
    QTreeWidget* m_list = nullptr;
};

} // namespace quorlin
