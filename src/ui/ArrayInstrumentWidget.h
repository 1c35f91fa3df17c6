#pragma once

#include "fields/InstrumentAlert.h"
#include "ui/InstrumentControlRelay.h"

#include <QList>
#include <QWidget>

#include <memory>
#include <optional>

class QLabel;
class QSortFilterProxyModel;
class QTableView;
class QToolButton;

namespace quorlin {

class ArrayInstrumentController;
class ArrayTableModel;
class FieldViewController;
class InstrumentChooser;

// The table of an array field: rows and columns as the controller gives them,
// every edit written through the controller so it lands on the undo stack.
// Clicking a column's header sorts the view only; the array keeps its order.
class ArrayInstrumentWidget : public QWidget {
    Q_OBJECT
public:
    ArrayInstrumentWidget(FieldViewController& field, ArrayInstrumentController& controller,
                          QWidget* parent = nullptr);
    ~ArrayInstrumentWidget() override;

    // Where adding asks for an app or a property-list file.
    void setChooser(std::shared_ptr<InstrumentChooser> chooser);
    QTableView* tableView() const { return m_table; }

    void addRow();
    void removeSelectedRows();
    void duplicateSelectedRows();
    // Moves the one selected row up (-1) or down (+1), while the view isn't sorted.
    void moveSelectedRow(int offset);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void buildColumns();
    void reload();
    void selectionDidChange();
    void updateControls();
    void editAddedRow();
    void tabPastLastCell(int row, int column);
    void addChosenPlistFile();
    // A data, property-list or app cell of a dictionary row takes its value
    // from a chooser; false when the cell isn't one.
    bool chooseForCell(const QModelIndex& index);
    void showRefusal(const std::optional<InstrumentAlert>& refusal);
    QList<int> selectedSourceRows() const;
    void selectSourceRow(int row);

    FieldViewController& m_field;
    ArrayInstrumentController& m_controller;
    std::shared_ptr<InstrumentChooser> m_chooser;
    ArrayTableModel* m_model = nullptr;
    QSortFilterProxyModel* m_proxy = nullptr;
    QTableView* m_table = nullptr;
    QLabel* m_placeholder = nullptr;
    QLabel* m_refusal = nullptr;
    QToolButton* m_addButton = nullptr;
    QToolButton* m_removeButton = nullptr;
    QToolButton* m_duplicateButton = nullptr;
    QAction* m_duplicateAction = nullptr;
    InstrumentControlRelay m_relay;
};

} // namespace quorlin
