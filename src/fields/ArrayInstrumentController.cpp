#include "fields/ArrayInstrumentController.h"

#include "fields/AppSelectorInstrumentController.h"
#include "fields/ContainerValue.h"
#include "fields/CustomPlistInstrumentController.h"
#include "fields/DataInstrumentController.h"
#include "fields/KeyPath.h"
#include "fields/KeyPrototypeMapper.h"
#include "model/SystemDateSource.h"

namespace quorlin {

namespace {

using Kind = PFMKeyPrototype::Kind;

std::shared_ptr<DateSource> orSystemDates(std::shared_ptr<DateSource> dates) {
    return dates ? std::move(dates) : std::make_shared<SystemDateSource>();
}

} // namespace

ArrayInstrumentController::ArrayInstrumentController(std::shared_ptr<DateSource> dates)
    : m_arrayController(orSystemDates(dates))
    , m_dates(orSystemDates(std::move(dates))) {}

void ArrayInstrumentController::setUnderlyingSubkeyPrototypeIndex(int index) {
    m_underlyingSubkeyPrototypeIndex = index;
    updateUnderlyingPrototype();
}

void ArrayInstrumentController::representedObjectDidChange() {
    updateUnderlyingPrototype();
}

void ArrayInstrumentController::updateUnderlyingPrototype() {
    const auto& key = representedPreferenceKey();
    const PFMKeyPrototypeList subkeys = key ? key->prototype().subkeys() : PFMKeyPrototypeList();
    const int index = m_underlyingSubkeyPrototypeIndex;
    m_underlyingSubkeyPrototype = index >= 0 && index < subkeys.size() ? subkeys.at(index) : nullptr;
    // Several item prototypes: each has a table of its own items.
    m_arrayController.setFilterPrototype(subkeys.size() >= 2 ? m_underlyingSubkeyPrototype : nullptr);
    m_arrayController.setParentArrayKey(key);
    m_arrayController.setPrototypeForNewKey(m_underlyingSubkeyPrototype);
    buildColumns();
}

bool ArrayInstrumentController::underlyingIsConventionalDictionary() const {
    return m_underlyingSubkeyPrototype &&
           m_underlyingSubkeyPrototype->representedDictionary() ==
               PFMKeyPrototype::RepresentableDictionary::conventionalDictionary;
}

void ArrayInstrumentController::buildColumns() {
    m_columns.clear();
    m_hasHeader = false;
    if (!m_underlyingSubkeyPrototype)
        return;
    if (!underlyingIsConventionalDictionary()) {
        Column single;
        single.identifier = nonDictionaryArrayColumn;
        single.properties = {m_underlyingSubkeyPrototype, QString(),
                             InstrumentFactory::type(*m_underlyingSubkeyPrototype, true)};
        m_columns.append(single);
        return;
    }
    m_hasHeader = true;
    for (const KeyPrototypeMapper& mapper : KeyPrototypeMapper::mappers(m_underlyingSubkeyPrototype)) {
        const PFMKeyPrototype& prototype = *mapper.keyPrototype();
        Column column;
        column.identifier = mapper.bindingName();
        column.title = prototype.title();
        column.minimumWidth = prototype.kind() == Kind::boolean ? 18 : 80;
        column.properties = {mapper.keyPrototype(), mapper.bindingName(),
                             InstrumentFactory::type(prototype, true)};
        column.sortKey = QStringLiteral("value.") + mapper.bindingName() + QStringLiteral(".value");
        column.comparesCaseInsensitively = prototype.kind() == Kind::string;
        m_columns.append(column);
    }
}

const ArrayInstrumentController::Column* ArrayInstrumentController::column(const QString& identifier) const {
    for (const Column& candidate : m_columns) {
        if (candidate.identifier == identifier)
            return &candidate;
    }
    return nullptr;
}

std::optional<QString> ArrayInstrumentController::nestedPath(const ColumnProperties& properties) {
    if (properties.bindingName.isEmpty())
        return std::nullopt;
    return QStringLiteral("value.") + properties.bindingName;
}

std::unique_ptr<InstrumentController>
ArrayInstrumentController::makeCellInstrument(const QString& columnIdentifier, int row) const {
    const Column* found = column(columnIdentifier);
    const PreferenceKey::KeyList items = rows();
    if (!found || row < 0 || row >= items.size())
        return nullptr;
    auto instrument = InstrumentFactory::makeInstrument(found->properties.instrumentType);
    instrument->setTableCellMode(true);
    // In a single-column table a data, plist or app cell is a bare value.
    const bool showingButtons = underlyingIsConventionalDictionary();
    if (auto* data = dynamic_cast<DataInstrumentController*>(instrument.get()))
        data->setShowingButtons(showingButtons);
    if (auto* plist = dynamic_cast<CustomPlistInstrumentController*>(instrument.get()))
        plist->setShowingButtons(showingButtons);
    if (auto* app = dynamic_cast<AppSelectorInstrumentController*>(instrument.get()))
        app->setShowingButtons(showingButtons);
    instrument->setWriter(writer());
    const auto path = nestedPath(found->properties);
    instrument->setRepresentedObject(path ? KeyPath(*path).resolveKey(items.at(row)) : items.at(row));
    return instrument;
}

void ArrayInstrumentController::setSelection(const QList<int>& rows) {
    m_arrayController.setSelectionIndexes(rows);
    notifyChange();
}

std::optional<InstrumentController::Types> ArrayInstrumentController::singleColumnType() const {
    if (underlyingIsConventionalDictionary() || m_columns.isEmpty())
        return std::nullopt;
    return m_columns.first().properties.instrumentType;
}

ArrayInstrumentController::AddOutcome ArrayInstrumentController::addRow() {
    const auto single = singleColumnType();
    if (single == Types::appSelector)
        return AddOutcome::needsAppSelection;
    if (single == Types::customPlist)
        return AddOutcome::needsPlistFile;
    m_shouldEditRowAfterAdding = int(rows().size());
    appendItem(m_arrayController.newObject());
    return AddOutcome::added;
}

void ArrayInstrumentController::addChosenBundleId(const QString& bundleId) {
    if (bundleId.isEmpty())
        return;
    const auto item = m_arrayController.newObject();
    item->setValue(plist::Value(bundleId));
    appendItem(item);
}

void ArrayInstrumentController::addChosenPlist(const plist::Value& value) {
    const auto& key = representedPreferenceKey();
    if (!key)
        return;
    if (key->prototype().subkeys().isEmpty()) {
        writeValue(PreferenceKeyValue(value));
        notifyChange();
        return;
    }
    const auto item = m_arrayController.newObject();
    item->setValue(ContainerValue::make(item, value));
    appendItem(item);
}

void ArrayInstrumentController::removeSelectedRows() {
    const PreferenceKey::KeyList visible = rows();
    PreferenceKey::KeyList remaining = m_arrayController.content();
    for (const int row : selection()) {
        if (row >= 0 && row < visible.size())
            remaining.removeOne(visible.at(row));
    }
    m_arrayController.setSelectionIndexes({});
    // An emptied table unsets its key, so that it doesn't write out, unless
    // the key holds items of the file that no row shows: those stay.
    const auto& key = representedPreferenceKey();
    if (remaining.isEmpty() && key && key->heldValues().items.isEmpty()) {
        writer()->writeValue(key, {}, QString());
        notifyChange();
        return;
    }
    writeItems(remaining);
}

void ArrayInstrumentController::duplicateSelectedRows() {
    const PreferenceKey::KeyList visible = rows();
    PreferenceKey::KeyList items = m_arrayController.content();
    for (const int row : selection()) {
        if (row >= 0 && row < visible.size())
            items.append(visible.at(row)->duplicateKey());
    }
    writeItems(items);
}

void ArrayInstrumentController::moveRow(int from, int to) {
    const PreferenceKey::KeyList visible = rows();
    if (from < 0 || to < 0 || from >= visible.size() || to >= visible.size() || from == to)
        return;
    PreferenceKey::KeyList items = m_arrayController.content();
    const qsizetype fromIndex = items.indexOf(visible.at(from));
    const qsizetype toIndex = items.indexOf(visible.at(to));
    items.move(fromIndex, toIndex);
    writeItems(items);
}

std::optional<int> ArrayInstrumentController::rowViewDidAppear(int row) {
    if (m_shouldEditRowAfterAdding != row)
        return std::nullopt;
    const int column = m_columnToEditAfterAdding.value_or(0);
    m_shouldEditRowAfterAdding.reset();
    m_columnToEditAfterAdding.reset();
    return column;
}

bool ArrayInstrumentController::tabPastEndOfCell(int row, int column) {
    if (row != rows().size() - 1)
        return false;
    m_columnToEditAfterAdding = column;
    return addRow() == AddOutcome::added;
}

bool ArrayInstrumentController::doubleClick(int row) {
    if (row >= 0 && row < rows().size())
        return false;
    return addRow() == AddOutcome::added;
}

void ArrayInstrumentController::bindValue() {
    bind(ValueBinding::Role::content, QStringLiteral("value"), {});
}

void ArrayInstrumentController::appendItem(const PreferenceKey::Pointer& item) {
    PreferenceKey::KeyList items = m_arrayController.content();
    items.append(item);
    writeItems(items);
}

void ArrayInstrumentController::writeItems(const PreferenceKey::KeyList& items) {
    if (const auto& key = representedPreferenceKey())
        writer()->writeValue(key, PreferenceKeyValue(items), QString());
    notifyChange();
}

} // namespace quorlin
