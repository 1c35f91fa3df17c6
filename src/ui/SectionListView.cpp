#include "ui/SectionListView.h"

#include "ui/SectionItemDelegate.h"
#include "ui/SectionListModel.h"

#include <QContextMenuEvent>
#include <QMouseEvent>
#include <QTimer>

namespace quorlin {

SectionListView::SectionListView(SectionArrayController& list, QWidget* parent)
    : QListView(parent)
    , m_list(list)
    , m_model(new SectionListModel(list, std::nullopt, this)) {
    setModel(m_model);
    setItemDelegate(new SectionItemDelegate(this));
    setSelectionMode(QAbstractItemView::SingleSelection);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setAccessibleName(tr("Sections"));
    setAccessibleDescription(tr("The payload sections of the profile"));
    // The model resets first (it connected first), then the view takes the
    // list's selection again.
    connect(&m_list, &SectionArrayController::arrangedObjectsChanged, this, [this] {
        showListSelection();
        // A re-sort may have moved the selected row; scroll once layout is done.
        QTimer::singleShot(0, this, &SectionListView::keepSelectionVisible);
    });
    connect(&m_list, &SectionArrayController::selectionChanged, this, [this] {
        showListSelection();
        keepSelectionVisible();
    });
    showListSelection();
}

void SectionListView::showListSelection() {
    // Rows of a re-sort not yet heard of; the reset that follows shows it.
    if (!m_model->isInStep())
        return;
    const bool wasShowing = std::exchange(m_showingListSelection, true);
    QItemSelection selection;
    for (const int row : m_list.selectionIndexes())
        selection.select(m_model->index(row), m_model->index(row));
    if (selection != selectionModel()->selection())
        selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
    if (!m_list.selectionIndexes().isEmpty())
        selectionModel()->setCurrentIndex(m_model->index(m_list.selectionIndexes().first()),
                                          QItemSelectionModel::NoUpdate);
    m_showingListSelection = wasShowing;
}

void SectionListView::keepSelectionVisible() {
    if (!m_list.selectionIndexes().isEmpty())
        scrollTo(m_model->index(m_list.selectionIndexes().first()));
}

void SectionListView::selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) {
    QListView::selectionChanged(selected, deselected);
    if (m_showingListSelection || !m_model->isInStep())
        return;
    QList<int> rows;
    for (const QModelIndex& index : selectionModel()->selectedIndexes())
        rows.append(index.row());
    m_list.setSelectionIndexes(rows);
}

// A press on a group title would clear the selection without selecting
// anything; such rows take no part in clicks.
void SectionListView::mousePressEvent(QMouseEvent* event) {
    const QModelIndex index = indexAt(event->position().toPoint());
    if (index.isValid() && index.data(SectionListModel::IsGroupTitleRole).toBool()) {
        event->accept();
        return;
    }
    QListView::mousePressEvent(event);
}

void SectionListView::mouseReleaseEvent(QMouseEvent* event) {
    QListView::mouseReleaseEvent(event);
    const QPoint point = event->position().toPoint();
    const QModelIndex index = indexAt(point);
    const QVariant badge = index.data(SectionListModel::BadgeRole);
    if (event->button() != Qt::LeftButton || !badge.isValid())
        return;
    if (SectionItemDelegate::badgeRect(visualRect(index), font(), badge.toInt()).contains(point))
        Q_EMIT badgeClicked(m_model->sectionAt(index.row()));
}

// The arrow keys pass over group titles; where only titles lie ahead the
// cursor stays.
QModelIndex SectionListView::moveCursor(CursorAction cursorAction, Qt::KeyboardModifiers modifiers) {
    const QModelIndex moved = QListView::moveCursor(cursorAction, modifiers);
    if (!moved.isValid() || !moved.data(SectionListModel::IsGroupTitleRole).toBool())
        return moved;
    const bool backwards = cursorAction == MoveUp || cursorAction == MovePrevious ||
                           cursorAction == MovePageUp || cursorAction == MoveLeft || cursorAction == MoveEnd;
    const int step = backwards ? -1 : 1;
    for (int row = moved.row() + step; row >= 0 && row < m_model->rowCount(); row += step) {
        const QModelIndex candidate = m_model->index(row);
        if (!candidate.data(SectionListModel::IsGroupTitleRole).toBool())
            return candidate;
    }
    return currentIndex();
}

void SectionListView::contextMenuEvent(QContextMenuEvent* event) {
    const QModelIndex index = indexAt(event->pos());
    m_list.setClickedRow(index.isValid() ? std::optional<int>(index.row()) : std::nullopt);
    Q_EMIT contextMenuRequested(index.isValid() ? m_model->sectionAt(index.row()) : nullptr,
                                event->globalPos());
    event->accept();
}

} // namespace quorlin
