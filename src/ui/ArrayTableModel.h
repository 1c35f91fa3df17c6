#pragma once

#include "fields/InstrumentFactory.h"
#include "model/PreferenceKey.h"

#include <QAbstractTableModel>

#include <functional>
#include <map>
#include <memory>
#include <utility>

namespace quorlin {

class ArrayInstrumentController;
class InstrumentController;

// The rows and columns of an array table as an item model. Each cell reads
// and writes through an instrument in table mode that the controller makes
// for it, so a cell shows and stores exactly what that instrument decides.
class ArrayTableModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Role {
        // What rows sort by: numbers as numbers, text folded when the column ignores case.
        SortRole = Qt::UserRole + 1,
        // The entries of a pop-up cell, an empty first one standing for no value.
        ChoicesRole,
        // The column's instrument type, as an int.
        InstrumentTypeRole
    };

    explicit ArrayTableModel(ArrayInstrumentController& controller, QObject* parent = nullptr);
    ~ArrayTableModel() override;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

    InstrumentFactory::Types columnType(int column) const;
    bool columnSorts(int column) const;
    // Reads the rows again; cells of items that stay rows only refresh.
    void reload();
    // Hands a cell's instrument to an edit the widget runs on it (choosing a
    // file for a data cell, say); the cell lives until the edit is over.
    void editCell(const QModelIndex& index, const std::function<void(InstrumentController&)>& edit);

private:
    class Cell;

    InstrumentController* cell(int row, int column) const;
    bool writeCell(InstrumentController& instrument, InstrumentFactory::Types type, const QVariant& value);

    ArrayInstrumentController& m_controller;
    PreferenceKey::KeyList m_rows;
    int m_columnCount = 0;
    mutable std::map<std::pair<int, int>, std::unique_ptr<Cell>> m_cells;
    // A cell's write echoes back as a change of the array; the cell must
    // outlive its own write, so the reload waits for the write to end.
    bool m_writing = false;
    bool m_reloadPending = false;
};

} // namespace quorlin
