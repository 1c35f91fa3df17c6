#pragma once

#include "workspace/PFMSection.h"
#include "workspace/SectionArrayController.h"

#include <QListView>
#include <QPoint>

namespace quorlin {

class SectionListModel;

// The side-bar: one row per arranged section of the list, group titles as
// headers that can't be selected, a red badge with the error count. Its
// selection and the list's are one.
class SectionListView : public QListView {
    Q_OBJECT

public:
    explicit SectionListView(SectionArrayController& list, QWidget* parent = nullptr);

    SectionListModel& sectionModel() const { return *m_model; }

Q_SIGNALS:
    // On a right-click; the list's clicked row is set to the row under the
    // pointer (or none), and the receiver clears it when its menu is done.
    void contextMenuRequested(PFMSection* clicked, const QPoint& globalPos);
    // A left click on a row's red badge, after the row was selected.
    void badgeClicked(PFMSection* section);

protected:
    void contextMenuEvent(QContextMenuEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    QModelIndex moveCursor(CursorAction cursorAction, Qt::KeyboardModifiers modifiers) override;
    void selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) override;

private:
    void showListSelection();
    void keepSelectionVisible();

    SectionArrayController& m_list;
    SectionListModel* m_model;
    // While the view takes the list's selection, it must not write it back.
    bool m_showingListSelection = false;
};

} // namespace quorlin
