#include "fields/FieldViewController.h"

#include "fields/ArrayInstrumentController.h"
#include "fields/DirectKeyValueWriter.h"
#include "fields/KeyPath.h"

#include <algorithm>

namespace quorlin {

namespace {

using Kind = PFMKeyPrototype::Kind;
using Types = InstrumentFactory::Types;

bool isEmptyValue(const PreferenceKeyValue& value) {
    if (const plist::Value* plain = value.plistValue()) {
        if (const auto text = plain->toString())
            return text->isEmpty();
        if (const auto data = plain->toData())
            return data->isEmpty();
        if (const auto* array = plain->array())
            return array->isEmpty();
        if (const auto* dictionary = plain->dictionary())
            return dictionary->isEmpty();
        return false;
    }
    if (const auto* items = value.keyList())
        return items->isEmpty();
    if (const auto* subkeys = value.keyMap())
        return subkeys->isEmpty();
    return false;
}

// The empty value a key of this kind can be forced to hold.
PreferenceKeyValue emptyValue(const PFMKeyPrototype& prototype) {
    switch (prototype.kind()) {
    case Kind::string:
        return plist::Value(QString());
    case Kind::data:
        return plist::Value(QByteArray());
    case Kind::array:
        if (prototype.subkeys().isEmpty())
            return plist::Value(plist::Array());
        return PreferenceKey::KeyList();
    case Kind::dictionary:
        if (prototype.representedDictionary() ==
            PFMKeyPrototype::RepresentableDictionary::conventionalDictionary)
            return PreferenceKey::KeyMap();
        return plist::Value(plist::Dictionary());
    default:
        return {};
    }
}

// The first key, depth-first, that a set-to-default would change.
PreferenceKey::Pointer firstKeyWithDefault(const PreferenceKey::Pointer& key) {
    const Kind kind = key->prototype().kind();
    if (kind != Kind::array && kind != Kind::dictionary)
        return key->prototype().defaultValue() ? key : nullptr;
    if (const auto children = key->children()) {
        for (const auto& child : *children) {
            if (auto found = firstKeyWithDefault(child))
                return found;
        }
    }
    return nullptr;
}

FieldViewController::Arrangement arrangementOf(Types type) {
    if (type == Types::boolean)
        return FieldViewController::Arrangement::boolean;
    if (type == Types::array)
        return FieldViewController::Arrangement::array;
    return FieldViewController::Arrangement::ordinary;
}

} // namespace

struct FieldViewController::Snapshot {
    DisplayText title;
    DisplayText name;
    bool requiredTag = false;
    bool allDetailsAreHidden = true;
    bool enabled = true;
    bool writeOut = false;
    std::optional<QString> error;
    std::optional<Spacing> spacing;
    friend bool operator==(const Snapshot&, const Snapshot&) = default;
};

FieldViewController::FieldViewController(PreferenceKey::Pointer field, Types instrumentType)
    : m_field(std::move(field))
    , m_instrumentType(instrumentType)
    , m_arrangement(arrangementOf(instrumentType))
    , m_details(m_field)
    , m_writer(DirectKeyValueWriter::shared()) {}

std::shared_ptr<FieldViewController> FieldViewController::make(const PreferenceKey::Pointer& field,
                                                               Types instrumentType) {
    std::shared_ptr<FieldViewController> controller(new FieldViewController(field, instrumentType));
    controller->m_fieldValidator = FieldValidator::make(field);
    controller->m_fieldValidator->setDelegate(controller);
    return controller;
}

std::shared_ptr<FieldViewController> FieldViewController::make(const PreferenceKey::Pointer& field) {
    return make(field, InstrumentFactory::type(field->prototype(), false));
}

FieldViewController::~FieldViewController() = default;

void FieldViewController::makeInstrument(std::shared_ptr<KeyValueWriter> writer) {
    if (writer)
        m_writer = std::move(writer);
    m_instruments.clear();
    if (m_arrangement == Arrangement::array) {
        makeArrayInstruments();
        return;
    }
    std::shared_ptr<InstrumentController> instrument = InstrumentFactory::makeInstrument(m_instrumentType);
    instrument->setParentFieldViewController(this);
    instrument->setWriter(m_writer);
    instrument->setRepresentedObject(m_field);
    m_instruments.append(instrument);
}

// One table per item prototype; with none the row has no instrument.
void FieldViewController::makeArrayInstruments() {
    const auto& subkeys = m_field->prototype().subkeys();
    for (int index = 0; index < subkeys.size(); ++index) {
        auto table = std::make_shared<ArrayInstrumentController>();
        table->setParentFieldViewController(this);
        table->setWriter(m_writer);
        table->setUnderlyingSubkeyPrototypeIndex(index);
        table->setRepresentedObject(m_field);
        m_instruments.append(table);
    }
}

void FieldViewController::setWriter(std::shared_ptr<KeyValueWriter> writer) {
    m_writer = writer ? std::move(writer) : DirectKeyValueWriter::shared();
    for (const auto& instrument : m_instruments)
        instrument->setWriter(m_writer);
}

void FieldViewController::setFieldDisplaySettings(const std::optional<FieldDisplaySettings>& settings) {
    if (settings == m_fieldDisplaySettings)
        return;
    const auto termOf = [](const std::optional<FieldDisplaySettings>& value) {
        return value ? value->highlightedTerm : std::nullopt;
    };
    const bool termChanged = termOf(settings) != termOf(m_fieldDisplaySettings);
    m_fieldDisplaySettings = settings;
    if (termChanged)
        recomputeMatches();
    m_details.setFieldDisplaySettings(settings);
    if (m_changeHandler)
        m_changeHandler();
}

void FieldViewController::recomputeMatches() {
    const auto term = m_fieldDisplaySettings ? m_fieldDisplaySettings->highlightedTerm : std::nullopt;
    const PFMKeyPrototype& prototype = m_field->prototype();
    m_matchesTitle = TextRange::termMatches(prototype.title(), term);
    m_matchesName = TextRange::termMatches(prototype.name().value_or(QString()), term);
    m_matchesDescription = TextRange::termMatches(prototype.descriptionLine(), term);
}

bool FieldViewController::hasTermMatch() const {
    return !m_matchesTitle.isEmpty() || !m_matchesName.isEmpty() || !m_matchesDescription.isEmpty();
}

FieldViewController::DisplayText FieldViewController::displayTitle() const {
    const bool dimmed = m_arrangement == Arrangement::boolean && m_field->excludedDisabledByConditional();
    return {m_field->prototype().title(), m_matchesTitle, dimmed};
}

FieldViewController::DisplayText FieldViewController::displayName() const {
    const bool dimmed = m_arrangement == Arrangement::boolean && m_field->excludedDisabledByConditional();
    return {m_field->prototype().name().value_or(QString()), m_matchesName, dimmed};
}

FieldViewController::DisplayText FieldViewController::displayDescription() const {
    return {m_field->prototype().descriptionLine(), m_matchesDescription, false};
}

bool FieldViewController::hideDescription() const {
    if (m_field->prototype().descriptionLine().isEmpty())
        return true;
    if (m_arrangement == Arrangement::boolean)
        return !m_fieldDisplaySettings || !m_fieldDisplaySettings->showBooleanDescription;
    return false;
}

bool FieldViewController::isEnabled() const {
    return m_field->prototype().userEditable() && !m_field->excludedDisabledByConditional();
}

bool FieldViewController::showsWriteOutIndicator() const {
    return m_field->isWritingOut();
}

std::optional<QString> FieldViewController::error() const {
    const auto& error = m_fieldValidator->prominentError();
    if (!error || error->isEmpty())
        return std::nullopt;
    return error;
}

std::optional<FieldViewController::Spacing> FieldViewController::spacing() const {
    if (m_arrangement != Arrangement::boolean)
        return std::nullopt;
    if (!m_details.allDetailsAreHidden())
        return Spacing{16, 4};
    return error() ? Spacing{16, 0} : Spacing{1, 0};
}

int FieldViewController::leadingPadding() const {
    if (m_arrangement != Arrangement::boolean)
        return 0;
    return int(std::max<qint64>(0, m_field->prototype().indentationLevel())) * 20;
}

bool FieldViewController::validateMenuItem(MenuAction action) const {
    const bool disabled = !isEnabled();
    const PFMKeyPrototype& prototype = m_field->prototype();
    const PreferenceKeyValue& value = m_field->value();
    switch (action) {
    case MenuAction::unsetOnPayload:
        return !disabled && !value.isAbsent() && !prototype.ghost();
    case MenuAction::setPropertyToDefaultValue: {
        if (disabled || !m_field->hasDefaultAvailable())
            return false;
        const plist::Value* plain = value.plistValue();
        return !prototype.defaultValue() || !plain || *plain != *prototype.defaultValue();
    }
    case MenuAction::forceEmptyValue: {
        const Kind kind = prototype.kind();
        const bool hasEmptyForm =
            kind != Kind::boolean && kind != Kind::integer && kind != Kind::real && kind != Kind::date;
        return !disabled && hasEmptyForm && (value.isAbsent() || !isEmptyValue(value));
    }
    case MenuAction::openPropertyInfoPanel:
        return true;
    }
    return true;
}

void FieldViewController::perform(MenuAction action) {
    switch (action) {
    case MenuAction::unsetOnPayload:
        m_writer->writeValue(m_field, {}, QString());
        break;
    case MenuAction::setPropertyToDefaultValue:
        if (const auto target = firstKeyWithDefault(m_field))
            m_writer->writeValue(target, *target->prototype().defaultValue(), QString());
        break;
    case MenuAction::forceEmptyValue:
        m_writer->writeValue(m_field, emptyValue(m_field->prototype()), QString());
        break;
    case MenuAction::openPropertyInfoPanel:
        break;
    }
    refresh();
}

InfoPanelViewModel FieldViewController::propertyInfo() const {
    return InfoPanelViewModel::make(*m_field);
}

FieldViewController::Snapshot FieldViewController::snapshot() const {
    return {displayTitle(),
            displayName(),
            m_details.showsRequiredTag(),
            m_details.allDetailsAreHidden(),
            isEnabled(),
            showsWriteOutIndicator(),
            error(),
            spacing()};
}

void FieldViewController::refresh() {
    const Snapshot before = snapshot();
    for (const auto& instrument : m_instruments)
        instrument->requirementMayHaveChanged();
    m_details.update();
    if (!(snapshot() == before) && m_changeHandler)
        m_changeHandler();
}

void FieldViewController::fieldValidatorValidityDidChange(FieldValidator&) {
    if (m_changeHandler)
        m_changeHandler();
}

} // namespace quorlin
