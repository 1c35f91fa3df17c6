#include "ui/ArrayTableModel.h"

#include "fields/AppSelectorInstrumentController.h"
#include "fields/ArrayInstrumentController.h"
#include "fields/BooleanInstrumentController.h"
#include "fields/CustomPlistInstrumentController.h"
#include "fields/DataInstrumentController.h"
#include "ui/InstrumentControlRelay.h"

#include <QColor>
#include <QDateTime>
#include <QLocale>
#include <QPalette>

namespace quorlin {

namespace {

using Types = InstrumentFactory::Types;

QString plainText(const plist::Value& value) {
    switch (value.type()) {
    case plist::Value::Type::String:
        return *value.toString();
    case plist::Value::Type::Integer:
        return value.isUnsignedInteger() ? QString::number(*value.toUnsigned())
                                         : QString::number(*value.toInteger());
    case plist::Value::Type::Real:
        return QString::number(*value.toReal(), 'g', 15);
    case plist::Value::Type::Boolean:
        return *value.toBoolean() ? QStringLiteral("true") : QStringLiteral("false");
    case plist::Value::Type::Date:
        return QLocale().toString(value.toDate()->toDateTime().toLocalTime(), QLocale::ShortFormat);
    default:
        return {};
    }
}

bool isTextBased(Types type) {
    return type == Types::string || type == Types::text || type == Types::integer || type == Types::real ||
           type == Types::comboBox;
}

bool isEditable(Types type) {
    return isTextBased(type) || type == Types::popUpButton || type == Types::date;
}

plist::Value shownValue(const InstrumentController& instrument) {
    const auto binding = instrument.valueBinding();
    return binding ? binding->displayedValue() : plist::Value();
}

std::shared_ptr<ValueBinding> contentBinding(const InstrumentController& instrument) {
    for (const auto& binding : instrument.bindings()) {
        if (binding->role() == ValueBinding::Role::content)
            return binding;
    }
    return nullptr;
}

// The entries of a pop-up as the content binding gives them.
plist::Array popUpEntries(const InstrumentController& instrument) {
    const auto binding = contentBinding(instrument);
    const plist::Value shown = binding ? binding->displayedValue() : plist::Value();
    return shown.array() ? *shown.array() : plist::Array();
}

std::optional<QString> placeholderText(const InstrumentController& instrument) {
    const auto binding = instrument.valueBinding();
    if (!binding || !binding->options().nullPlaceholder)
        return std::nullopt;
    return binding->options().nullPlaceholder->toString();
}

// What a cell of a file-based instrument tells about its value; nothing
// for the cells that show the value itself.
std::optional<QString> summary(const InstrumentController& instrument) {
    if (const auto* data = dynamic_cast<const DataInstrumentController*>(&instrument))
        return data->sizeText().value_or(QString());
    if (const auto* custom = dynamic_cast<const CustomPlistInstrumentController*>(&instrument))
        return custom->explanatoryText();
    if (const auto* app = dynamic_cast<const AppSelectorInstrumentController*>(&instrument))
        return app->bundleId().value_or(QString());
    return std::nullopt;
}

QString displayText(const InstrumentController& instrument) {
    if (const auto text = summary(instrument))
        return *text;
    const QString text = plainText(shownValue(instrument));
    if (!text.isEmpty())
        return text;
    return placeholderText(instrument).value_or(QString());
}

QVariant sortValue(const InstrumentController& instrument, Types type, bool foldsCase) {
    if (const auto* boolean = dynamic_cast<const BooleanInstrumentController*>(&instrument))
        return int(boolean->displayedState());
    const plist::Value shown = shownValue(instrument);
    if (const auto date = shown.toDate())
        return date->toDateTime();
    if (const auto number = shown.numberAsReal())
        return *number;
    const QString text = plainText(shown);
    if (type == Types::integer || type == Types::real) {
        bool isNumber = false;
        const double number = text.toDouble(&isNumber);
        return isNumber ? QVariant(number) : QVariant();
    }
    if (text.isEmpty())
        return {};
    return foldsCase ? text.toCaseFolded() : text;
}

} // namespace

class ArrayTableModel::Cell {
public:
    explicit Cell(std::unique_ptr<InstrumentController> instrument)
        : m_instrument(std::move(instrument)) {
        if (m_instrument)
            m_instrument->attachControl(&m_control);
    }
    ~Cell() {
        if (m_instrument)
            m_instrument->attachControl(nullptr);
    }
    Cell(const Cell&) = delete;
    Cell& operator=(const Cell&) = delete;

    InstrumentController* instrument() const { return m_instrument.get(); }

private:
    InstrumentControlRelay m_control;
    std::unique_ptr<InstrumentController> m_instrument;
};

ArrayTableModel::ArrayTableModel(ArrayInstrumentController& controller, QObject* parent)
    : QAbstractTableModel(parent)
    , m_controller(controller)
    , m_rows(controller.rows())
    , m_columnCount(int(controller.columns().size())) {}

ArrayTableModel::~ArrayTableModel() = default;

int ArrayTableModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : int(m_rows.size());
}

int ArrayTableModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : m_columnCount;
}

InstrumentFactory::Types ArrayTableModel::columnType(int column) const {
    const auto& columns = m_controller.columns();
    if (column < 0 || column >= columns.size())
        return Types::string;
    return columns.at(column).properties.instrumentType;
}

bool ArrayTableModel::columnSorts(int column) const {
    const auto& columns = m_controller.columns();
    return column >= 0 && column < columns.size() && !columns.at(column).sortKey.isEmpty();
}

InstrumentController* ArrayTableModel::cell(int row, int column) const {
    if (row < 0 || row >= m_rows.size() || column < 0 || column >= m_columnCount)
        return nullptr;
    auto& slot = m_cells[{row, column}];
    if (!slot)
        slot = std::make_unique<Cell>(
            m_controller.makeCellInstrument(m_controller.columns().at(column).identifier, row));
    return slot->instrument();
}

QVariant ArrayTableModel::data(const QModelIndex& index, int role) const {
    const InstrumentController* instrument = cell(index.row(), index.column());
    if (!instrument)
        return {};
    const Types type = columnType(index.column());
    switch (role) {
    case Qt::DisplayRole:
        return type == Types::boolean ? QVariant() : QVariant(displayText(*instrument));
    case Qt::EditRole:
        if (type == Types::date) {
            const auto date = shownValue(*instrument).toDate();
            return date ? QVariant(date->toDateTime().toLocalTime()) : QVariant(QDateTime::currentDateTime());
        }
        return type == Types::boolean ? QVariant() : QVariant(plainText(shownValue(*instrument)));
    case Qt::CheckStateRole:
        if (const auto* boolean = dynamic_cast<const BooleanInstrumentController*>(instrument))
            return boolean->displayedState() ? Qt::Checked : Qt::Unchecked;
        return {};
    case Qt::ForegroundRole:
        // An empty cell shows its placeholder in grey.
        if (isTextBased(type) && plainText(shownValue(*instrument)).isEmpty())
            return QPalette().color(QPalette::PlaceholderText);
        return {};
    case SortRole:
        return sortValue(*instrument, type,
                         m_controller.columns().at(index.column()).comparesCaseInsensitively);
    case ChoicesRole: {
        QStringList choices;
        if (const auto binding = contentBinding(*instrument);
            binding && binding->options().insertsNullPlaceholder)
            choices.append(QString());
        for (const plist::Value& entry : popUpEntries(*instrument))
            choices.append(plainText(entry));
        return choices;
    }
    case InstrumentTypeRole:
        return int(type);
    default:
        return {};
    }
}

bool ArrayTableModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    InstrumentController* instrument = cell(index.row(), index.column());
    if (!instrument)
        return false;
    const Types type = columnType(index.column());
    const bool isCheck = role == Qt::CheckStateRole && type == Types::boolean;
    if (!isCheck && (role != Qt::EditRole || !isEditable(type)))
        return false;
    bool written = false;
    editCell(index, [&](InstrumentController& cell) { written = writeCell(cell, type, value); });
    return written;
}

void ArrayTableModel::editCell(const QModelIndex& index,
                               const std::function<void(InstrumentController&)>& edit) {
    InstrumentController* instrument = cell(index.row(), index.column());
    if (!instrument)
        return;
    m_writing = true;
    edit(*instrument);
    m_writing = false;
    // The write reloads once it is over, or refreshes the cell it changed.
    if (m_reloadPending) {
        m_reloadPending = false;
        reload();
    } else {
        Q_EMIT dataChanged(index, index);
    }
}

bool ArrayTableModel::writeCell(InstrumentController& instrument, Types type, const QVariant& value) {
    if (auto* boolean = dynamic_cast<BooleanInstrumentController*>(&instrument)) {
        boolean->click(false, false);
        return true;
    }
    const auto binding = instrument.valueBinding();
    if (!binding)
        return false;
    if (type == Types::date) {
        binding->controlValueDidChange(plist::Date::fromDateTime(value.toDateTime()));
        return true;
    }
    const QString text = value.toString();
    if (type == Types::popUpButton) {
        // The entry chosen, as the pop-up's content holds it; the empty one is no value.
        plist::Value chosen;
        for (const plist::Value& entry : popUpEntries(instrument)) {
            if (!text.isEmpty() && plainText(entry) == text)
                chosen = entry;
        }
        binding->controlValueDidChange(chosen);
        return true;
    }
    binding->controlValueDidChange(plist::Value(text));
    return true;
}

Qt::ItemFlags ArrayTableModel::flags(const QModelIndex& index) const {
    if (!index.isValid())
        return Qt::NoItemFlags;
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    const Types type = columnType(index.column());
    if (type == Types::boolean)
        flags |= Qt::ItemIsUserCheckable;
    else if (isEditable(type))
        flags |= Qt::ItemIsEditable;
    return flags;
}

QVariant ArrayTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QAbstractTableModel::headerData(section, orientation, role);
    const auto& columns = m_controller.columns();
    if (section < 0 || section >= columns.size())
        return {};
    return columns.at(section).title;
}

void ArrayTableModel::reload() {
    if (m_writing) {
        m_reloadPending = true;
        return;
    }
    const PreferenceKey::KeyList rows = m_controller.rows();
    const int columns = int(m_controller.columns().size());
    // The cells may stand for keys that an undo replaced: make them again.
    if (rows == m_rows && columns == m_columnCount) {
        m_cells.clear();
        if (!rows.isEmpty() && columns > 0)
            Q_EMIT dataChanged(index(0, 0), index(int(rows.size()) - 1, columns - 1));
        return;
    }
    beginResetModel();
    m_cells.clear();
    m_rows = rows;
    m_columnCount = columns;
    endResetModel();
}

} // namespace quorlin
