#include "ui/ArrayInstrumentWidget.h"

#include "fields/AppSelectorInstrumentController.h"
#include "fields/ArrayInstrumentController.h"
#include "fields/CustomPlistInstrumentController.h"
#include "fields/DataInstrumentController.h"
#include "fields/FieldViewController.h"
#include "plist/PlistReader.h"
#include "ui/ArrayCellDelegate.h"
#include "ui/ArrayTableModel.h"
#include "ui/InstrumentChooser.h"

#include <QAction>
#include <QFile>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QSortFilterProxyModel>
#include <QTableView>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

namespace quorlin {

namespace {

QToolButton* makeToolButton(const QString& text, const QString& accessibleName, QWidget* parent) {
    auto* button = new QToolButton(parent);
    button->setText(text);
    button->setAccessibleName(accessibleName);
    button->setToolTip(accessibleName);
    button->setObjectName(accessibleName.toLower() + QStringLiteral("RowButton"));
    return button;
}

std::optional<plist::Value> readPlistFile(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    auto read = plist::PlistReader::read(file.readAll());
    return read ? std::optional<plist::Value>(read->root) : std::nullopt;
}

} // namespace

ArrayInstrumentWidget::ArrayInstrumentWidget(FieldViewController& field,
                                             ArrayInstrumentController& controller, QWidget* parent)
    : QWidget(parent)
    , m_field(field)
    , m_controller(controller)
    , m_chooser(InstrumentChooser::dialogs())
    , m_relay([this] { reload(); }) {
    m_model = new ArrayTableModel(controller, this);
    m_proxy = new QSortFilterProxyModel(this);
    m_proxy->setSourceModel(m_model);
    m_proxy->setSortRole(ArrayTableModel::SortRole);

    m_table = new QTableView(this);
    m_table->setObjectName(QStringLiteral("arrayTable"));
    m_table->setModel(m_proxy);
    auto* cells = new ArrayCellDelegate(m_table);
    m_table->setItemDelegate(cells);
    // Once the editor has gone: the new row opens its cell for editing.
    connect(cells, &ArrayCellDelegate::tabbedPastLastCell, this, &ArrayInstrumentWidget::tabPastLastCell,
            Qt::QueuedConnection);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_table->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                             QAbstractItemView::SelectedClicked);
    m_table->verticalHeader()->hide();
    m_table->horizontalHeader()->setStretchLastSection(true);
    m_table->installEventFilter(this);
    m_table->viewport()->installEventFilter(this);

    m_placeholder = new QLabel(QStringLiteral("No Items"), m_table->viewport());
    m_placeholder->setObjectName(QStringLiteral("emptyTablePlaceholder"));
    m_placeholder->setEnabled(false);
    auto* overlay = new QVBoxLayout(m_table->viewport());
    overlay->addWidget(m_placeholder, 0, Qt::AlignCenter);

    m_addButton = makeToolButton(QStringLiteral("+"), QStringLiteral("Add"), this);
    m_removeButton = makeToolButton(QString(QChar(0x2212)), QStringLiteral("Remove"), this);
    m_duplicateButton = makeToolButton(QStringLiteral("\u29C9"), QStringLiteral("Duplicate"), this);
    m_duplicateAction = new QAction(QStringLiteral("Duplicate"), this);
    m_table->setContextMenuPolicy(Qt::ActionsContextMenu);
    m_table->addAction(m_duplicateAction);
    connect(m_addButton, &QToolButton::clicked, this, &ArrayInstrumentWidget::addRow);
    connect(m_removeButton, &QToolButton::clicked, this, &ArrayInstrumentWidget::removeSelectedRows);
    connect(m_duplicateAction, &QAction::triggered, this, &ArrayInstrumentWidget::duplicateSelectedRows);
    connect(m_duplicateButton, &QToolButton::clicked, this, &ArrayInstrumentWidget::duplicateSelectedRows);
    connect(m_table->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &ArrayInstrumentWidget::selectionDidChange);

    m_refusal = new QLabel(this);
    m_refusal->setObjectName(QStringLiteral("refusalLabel"));
    m_refusal->setWordWrap(true);
    m_refusal->hide();

    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(0);
    buttons->addWidget(m_addButton);
    buttons->addWidget(m_removeButton);
    buttons->addWidget(m_duplicateButton);
    buttons->addStretch();
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_table);
    layout->addLayout(buttons);
    layout->addWidget(m_refusal);

    buildColumns();
    // Attaching binds the array's value: each change of it, undo included, reloads the table.
    m_controller.attachControl(&m_relay);
    reload();
}

ArrayInstrumentWidget::~ArrayInstrumentWidget() {
    m_controller.attachControl(nullptr);
}

void ArrayInstrumentWidget::setChooser(std::shared_ptr<InstrumentChooser> chooser) {
    m_chooser = std::move(chooser);
}

void ArrayInstrumentWidget::buildColumns() {
    QHeaderView* header = m_table->horizontalHeader();
    header->setVisible(m_controller.hasHeader());
    const auto& columns = m_controller.columns();
    for (int column = 0; column < columns.size(); ++column)
        header->resizeSection(column,
                              std::max(columns.at(column).minimumWidth, header->sectionSizeHint(column)));
    // Only a table with a header has columns to sort by; it starts in the array's order.
    if (m_controller.hasHeader()) {
        header->setSortIndicator(-1, Qt::AscendingOrder);
        m_table->setSortingEnabled(true);
    }
}

void ArrayInstrumentWidget::reload() {
    if (!m_model)
        return;
    m_model->reload();
    m_placeholder->setVisible(m_model->rowCount() == 0);
    selectionDidChange();
    editAddedRow();
}

void ArrayInstrumentWidget::selectionDidChange() {
    const QList<int> rows = selectedSourceRows();
    if (rows != m_controller.selection())
        m_controller.setSelection(rows);
    updateControls();
}

void ArrayInstrumentWidget::updateControls() {
    const bool enabled = m_relay.enabled() && m_field.isEnabled();
    m_table->setEnabled(enabled);
    m_addButton->setEnabled(enabled);
    m_removeButton->setEnabled(enabled && m_controller.canRemoveOrDuplicate());
    m_duplicateAction->setEnabled(enabled && m_controller.canRemoveOrDuplicate());
    m_duplicateButton->setEnabled(m_duplicateAction->isEnabled());
}

void ArrayInstrumentWidget::tabPastLastCell(int row, int column) {
    const QModelIndex source = m_proxy->mapToSource(m_proxy->index(row, column));
    if (!source.isValid() || !m_table->isEnabled())
        return;
    // Adding marks the new row for editing in this column; its reload opens it.
    m_controller.tabPastEndOfCell(source.row(), source.column());
}

QList<int> ArrayInstrumentWidget::selectedSourceRows() const {
    QList<int> rows;
    for (const QModelIndex& index : m_table->selectionModel()->selectedRows())
        rows.append(m_proxy->mapToSource(index).row());
    std::sort(rows.begin(), rows.end());
    return rows;
}

void ArrayInstrumentWidget::selectSourceRow(int row) {
    const QModelIndex index = m_proxy->mapFromSource(m_model->index(row, 0));
    if (!index.isValid())
        return;
    m_table->setCurrentIndex(index);
    m_table->selectionModel()->select(index, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
}

void ArrayInstrumentWidget::addRow() {
    showRefusal(std::nullopt);
    switch (m_controller.addRow()) {
    case ArrayInstrumentController::AddOutcome::added:
        break;
    case ArrayInstrumentController::AddOutcome::needsAppSelection:
        if (const auto bundleId = m_chooser->chooseBundleId(this))
            m_controller.addChosenBundleId(*bundleId);
        break;
    case ArrayInstrumentController::AddOutcome::needsPlistFile:
        addChosenPlistFile();
        break;
    }
}

void ArrayInstrumentWidget::addChosenPlistFile() {
    const auto path = m_chooser->chooseFileToOpen(this, {QStringLiteral("plist")});
    if (!path)
        return;
    // The words of a refusal are the custom property list's: it checks the
    // file against a new item, or the key itself when it declares no items.
    CustomPlistInstrumentController checker;
    const auto& key = m_controller.representedPreferenceKey();
    const bool holdsItems = key && !key->prototype().subkeys().isEmpty();
    checker.setRepresentedObject(holdsItems ? m_controller.arrayController().newObject() : key);
    const auto root = readPlistFile(*path);
    if (!root) {
        // Reading fails before anything is written, with the alert that says why.
        showRefusal(checker.importFile(*path));
        return;
    }
    if (auto refusal = checker.checkImportedRoot(*root)) {
        showRefusal(refusal);
        return;
    }
    m_controller.addChosenPlist(*root);
}

bool ArrayInstrumentWidget::chooseForCell(const QModelIndex& index) {
    const QModelIndex source = m_proxy->mapToSource(index);
    bool handled = false;
    std::optional<InstrumentAlert> refusal;
    m_model->editCell(source, [&](InstrumentController& cell) {
        if (auto* data = dynamic_cast<DataInstrumentController*>(&cell); data && data->showingButtons()) {
            handled = true;
            if (const auto path = m_chooser->chooseFileToOpen(this, data->allowedFileExtensions()))
                refusal = data->chooseFile(*path);
        } else if (auto* custom = dynamic_cast<CustomPlistInstrumentController*>(&cell);
                   custom && custom->showingButtons()) {
            handled = true;
            if (const auto path = m_chooser->chooseFileToOpen(this, {QStringLiteral("plist")}))
                refusal = custom->importFile(*path);
        } else if (auto* app = dynamic_cast<AppSelectorInstrumentController*>(&cell);
                   app && app->showingButtons()) {
            handled = true;
            if (const auto chosen = m_chooser->chooseApp(this))
                app->choose(*chosen);
        }
    });
    if (handled)
        showRefusal(refusal);
    return handled;
}

void ArrayInstrumentWidget::editAddedRow() {
    const auto row = m_controller.shouldEditRowAfterAdding();
    if (!row || *row >= m_model->rowCount())
        return;
    const auto column = m_controller.rowViewDidAppear(*row);
    if (!column)
        return;
    const QModelIndex index = m_proxy->mapFromSource(m_model->index(*row, *column));
    selectSourceRow(*row);
    m_table->setCurrentIndex(index);
    m_table->scrollTo(index);
    if (index.flags() & Qt::ItemIsEditable)
        m_table->edit(index);
}

void ArrayInstrumentWidget::removeSelectedRows() {
    m_controller.setSelection(selectedSourceRows());
    if (m_controller.canRemoveOrDuplicate())
        m_controller.removeSelectedRows();
}

void ArrayInstrumentWidget::duplicateSelectedRows() {
    m_controller.setSelection(selectedSourceRows());
    if (m_controller.canRemoveOrDuplicate())
        m_controller.duplicateSelectedRows();
}

void ArrayInstrumentWidget::moveSelectedRow(int offset) {
    const QList<int> rows = selectedSourceRows();
    if (rows.size() != 1 || m_proxy->sortColumn() >= 0)
        return;
    const int to = rows.first() + offset;
    if (to < 0 || to >= m_model->rowCount())
        return;
    m_controller.moveRow(rows.first(), to);
    selectSourceRow(to);
}

void ArrayInstrumentWidget::showRefusal(const std::optional<InstrumentAlert>& refusal) {
    m_refusal->setVisible(refusal.has_value());
    m_refusal->setText(refusal ? refusal->title + QLatin1Char('\n') + refusal->informativeText : QString());
}

bool ArrayInstrumentWidget::eventFilter(QObject* watched, QEvent* event) {
    if (watched == m_table && event->type() == QEvent::KeyPress && m_table->isEnabled()) {
        const auto* key = static_cast<QKeyEvent*>(event);
        const bool control = key->modifiers() == Qt::ControlModifier;
        if (key->key() == Qt::Key_Insert && key->modifiers() == Qt::NoModifier) {
            addRow();
            return true;
        }
        if ((key->key() == Qt::Key_Delete || key->key() == Qt::Key_Backspace) &&
            key->modifiers() == Qt::NoModifier) {
            removeSelectedRows();
            return true;
        }
        if (control && (key->key() == Qt::Key_Up || key->key() == Qt::Key_Down)) {
            moveSelectedRow(key->key() == Qt::Key_Up ? -1 : 1);
            return true;
        }
    }
    // A double click below the last row adds one; on a file cell it chooses.
    if (watched == m_table->viewport() && event->type() == QEvent::MouseButtonDblClick &&
        m_table->isEnabled()) {
        const auto* mouse = static_cast<QMouseEvent*>(event);
        const QModelIndex index = m_table->indexAt(mouse->position().toPoint());
        if (!index.isValid()) {
            addRow();
            return true;
        }
        if (chooseForCell(index))
            return true;
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace quorlin
