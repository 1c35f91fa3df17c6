#include "ui/ProfileComparisonWindow.h"

#include "model/ProfileDifferenceText.h"

#include <QHeaderView>
#include <QLabel>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace quorlin {

namespace {

// Where the item's difference sits in the list.
constexpr int kDifferenceRole = Qt::UserRole + 1;

} // namespace

ProfileComparisonWindow::ProfileComparisonWindow(const QString& title, QWidget* parent)
    : QWidget(parent, Qt::Window) {
    setWindowTitle(title);
    setAttribute(Qt::WA_DeleteOnClose);
    m_summary = new QLabel(this);
    m_list = new QTreeWidget(this);
    m_list->setHeaderHidden(true);
    m_list->setAccessibleName(QStringLiteral("Differences"));
    m_list->setUniformRowHeights(true);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_summary);
    layout->addWidget(m_list);
    connect(m_list, &QTreeWidget::itemActivated, this, [this](QTreeWidgetItem* item) { choose(item); });
    connect(m_list, &QTreeWidget::itemClicked, this, [this](QTreeWidgetItem* item) { choose(item); });
    resize(640, 420);
}

void ProfileComparisonWindow::setDifferences(const QList<ProfileDifference>& differences) {
    m_differences = differences;
    m_list->clear();
    m_summary->setText(differences.isEmpty() ? ProfileDifferenceText::noDifferences()
                                             : QStringLiteral("%1 differences").arg(differences.size()));
    QTreeWidgetItem* group = nullptr;
    for (qsizetype index = 0; index < differences.size(); ++index) {
        const ProfileDifference& difference = differences[index];
        const bool isKey = !difference.keyPath.isEmpty() && group;
        auto* item = isKey ? new QTreeWidgetItem(group) : new QTreeWidgetItem(m_list);
        item->setText(0, isKey ? ProfileDifferenceText::line(difference)
                               : ProfileDifferenceText::heading(difference));
        item->setData(0, kDifferenceRole, qlonglong(index));
        if (!isKey)
            group = item;
    }
    m_list->expandAll();
}

void ProfileComparisonWindow::choose(QTreeWidgetItem* item) {
    const qsizetype index = item ? item->data(0, kDifferenceRole).toLongLong() : -1;
    if (index >= 0 && index < m_differences.size())
        Q_EMIT differenceChosen(m_differences[index]);
}

} // namespace quorlin
