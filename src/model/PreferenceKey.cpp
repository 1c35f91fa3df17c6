#include "model/PreferenceKey.h"

#include "model/Conditional.h"
#include "model/Payload.h"
#include "model/Profile.h"
#include "plist/PlistReader.h"
#include "plist/XmlWriter.h"
#include "schema/PFMDomain.h"

#include <QHash>
#include <QSaveFile>

#include <algorithm>
#include <utility>

namespace quorlin {

namespace {

using Kind = PFMKeyPrototype::Kind;

bool isScalarKind(Kind kind) {
    return kind != Kind::array && kind != Kind::dictionary;
}

// Which of several item prototypes an array item belongs to.
bool itemFits(const PFMKeyPrototype& prototype, const plist::Value& item) {
    if (isScalarKind(prototype.kind()))
        return PFMKeyPrototype::isOfPlistClass(item, prototype.kind());
    return prototype.matchesValue(item);
}

// Each held item keeps its place after the row it followed, or after the
// nearest row before that one which is still there; with none, it comes first.
QList<HeldValues::Item> itemsFollowingRows(const QList<HeldValues::Item>& held,
                                           const PreferenceKey::KeyList& before,
                                           const PreferenceKey::KeyList& after) {
    QHash<const PreferenceKey*, qsizetype> rowAfter;
    for (qsizetype row = 0; row < after.size(); ++row)
        rowAfter.insert(after.at(row).get(), row);
    QList<std::pair<qsizetype, plist::Value>> placed;
    placed.reserve(held.size());
    for (qsizetype order = 0; order < held.size(); ++order) {
        // Items are in index order, so those before this one account for
        // the other places before it.
        const qsizetype rowsBefore = std::min(held.at(order).index - order, before.size());
        qsizetype rowsBeforeNow = 0;
        for (qsizetype row = rowsBefore - 1; row >= 0; --row) {
            if (const auto found = rowAfter.constFind(before.at(row).get()); found != rowAfter.cend()) {
                rowsBeforeNow = *found + 1;
                break;
            }
        }
        placed.append({rowsBeforeNow, held.at(order).value});
    }
    std::stable_sort(placed.begin(), placed.end(),
                     [](const auto& left, const auto& right) { return left.first < right.first; });
    QList<HeldValues::Item> moved;
    moved.reserve(placed.size());
    for (qsizetype order = 0; order < placed.size(); ++order)
        moved.append({placed.at(order).first + order, placed.at(order).second});
    return moved;
}

} // namespace

PreferenceKey::PreferenceKey(PrototypePointer prototype)
    : m_prototype(std::move(prototype)) {}

PreferenceKey::~PreferenceKey() = default;

PreferenceKey::Pointer PreferenceKey::construct(const PrototypePointer& prototype, const Pointer& parent,
                                                const std::shared_ptr<Payload>& payload) {
    Pointer key(new PreferenceKey(prototype));
    if (payload) {
        key->m_parentPayload = payload;
    } else if (parent) {
        key->m_parentKey = parent;
        // A new child starts hidden or disabled along with its parent.
        key->updateExclusions();
    }
    key->computeSupportedPlatforms();
    return key;
}

PreferenceKey::Pointer PreferenceKey::makeNew(const PrototypePointer& prototype, const Pointer& parent,
                                              const std::shared_ptr<Payload>& payload) {
    Pointer key = construct(prototype, parent, payload);
    const PFMKeyPrototype& schema = *prototype;
    if (schema.required() && key->requirementStatus() == RequirementStatus::required && schema.defaultValue())
        key->m_value = PreferenceKeyValue(*schema.defaultValue());
    if (key->isConventionalDictionary()) {
        if (auto subkeys = key->buildSubkeys(nullptr))
            key->m_value = PreferenceKeyValue(std::move(*subkeys));
    }
    key->updateRequired();
    key->updateWritingOut();
    return key;
}

PreferenceKey::Pointer PreferenceKey::makeFromValue(const PrototypePointer& prototype,
                                                    const plist::Value& value, const Pointer& parent,
                                                    const std::shared_ptr<Payload>& payload) {
    Pointer key = construct(prototype, parent, payload);
    const Kind kind = prototype->kind();
    key->m_loadedSource = value;
    if (isScalarKind(kind)) {
        if (PFMKeyPrototype::isOfPlistClass(value, kind))
            key->m_value = PreferenceKeyValue(value);
        else
            key->holdOwnValue(HeldValues::Reason::wrongClass, value);
    } else if (kind == Kind::array) {
        if (value.isArray())
            key->m_value = key->buildItems(value);
        else
            key->holdOwnValue(HeldValues::Reason::wrongClass, value);
    } else if (const plist::Dictionary* dictionary = value.dictionary()) {
        if (!key->isConventionalDictionary())
            key->m_value = PreferenceKeyValue(value);
        else if (auto subkeys = key->buildSubkeys(dictionary))
            key->m_value = PreferenceKeyValue(std::move(*subkeys));
        key->m_keepsEmptyDictionary = key->isConventionalDictionary() && dictionary->isEmpty();
    } else {
        key->holdOwnValue(HeldValues::Reason::wrongClass, value);
    }
    // A ghost is never written from its value, so the file's is held instead.
    if (prototype->ghost() && !key->m_heldValues.own)
        key->holdOwnValue(HeldValues::Reason::ghost, value);
    key->updateWritingOut();
    key->updateRequired();
    return key;
}

void PreferenceKey::holdOwnValue(HeldValues::Reason reason, const plist::Value& value) {
    if (!value.isNull())
        m_heldValues.own = HeldValues::Own{reason, value};
}

// Entries of the source that no subkey names are held, as the top of a
// payload keeps what the manifest doesn't describe.
std::optional<PreferenceKey::KeyMap> PreferenceKey::buildSubkeys(const plist::Dictionary* source) {
    KeyMap subkeys;
    const Pointer self = shared_from_this();
    for (const auto& subkeyPrototype : m_prototype->subkeys()) {
        if (!subkeyPrototype->name())
            continue;
        const QString& subkeyName = *subkeyPrototype->name();
        if (source && source->contains(subkeyName))
            subkeys.insert(subkeyName, makeFromValue(subkeyPrototype, source->value(subkeyName), self));
        else
            subkeys.insert(subkeyName, makeNew(subkeyPrototype, self));
    }
    if (source) {
        for (auto entry = source->begin(); entry != source->end(); ++entry) {
            if (!subkeys.contains(entry.key()))
                m_heldValues.subkeys.insert(entry.key(), entry.value());
        }
    }
    if (subkeys.isEmpty())
        return std::nullopt;
    return subkeys;
}

PreferenceKeyValue PreferenceKey::buildItems(const plist::Value& source) {
    const plist::Array* items = source.array();
    if (!items)
        return {};
    const PFMKeyPrototypeList& itemPrototypes = m_prototype->subkeys();
    if (itemPrototypes.isEmpty())
        return PreferenceKeyValue(source);
    const Pointer self = shared_from_this();
    KeyList keys;
    for (qsizetype index = 0; index < items->size(); ++index) {
        const plist::Value& item = items->at(index);
        if (itemPrototypes.size() == 1) {
            keys.append(makeFromValue(itemPrototypes.first(), item, self));
            continue;
        }
        const auto fitting = std::find_if(itemPrototypes.begin(), itemPrototypes.end(),
                                          [&](const auto& prototype) { return itemFits(*prototype, item); });
        if (fitting != itemPrototypes.end())
            keys.append(makeFromValue(*fitting, item, self));
        else
            m_heldValues.items.append({index, item});
    }
    return PreferenceKeyValue(std::move(keys));
}

void PreferenceKey::computeSupportedPlatforms() {
    std::optional<SupportedPlatforms> base;
    if (const auto payload = parentPayload())
        base = payload->domainPrototype().supportedPlatforms();
    else if (const auto parent = parentKey())
        base = parent->supportedPlatforms();

    const PFMKeyPrototype& schema = *m_prototype;
    if (schema.supportedOSes()) {
        m_internalSupportedPlatforms =
            base ? SupportedPlatforms::combinedWithParent(*schema.supportedOSes(), *base)
                 : SupportedPlatforms::fromSupportedOSes(*schema.supportedOSes());
    } else if (schema.supportedModels() || schema.lifeCycleVersions()) {
        m_internalSupportedPlatforms =
            base ? SupportedPlatforms::combinedWithParent(schema.supportedModels(),
                                                          schema.lifeCycleVersions(), *base)
                 : SupportedPlatforms::make(schema.supportedModels(), schema.lifeCycleVersions());
    } else {
        m_internalSupportedPlatforms = base;
    }
}

QString PreferenceKey::name() const {
    return m_prototype->name().value_or(QString());
}

void PreferenceKey::setValue(const PreferenceKeyValue& value) {
    if (value.isAbsent()) {
        m_heldValues = {};
        m_keepsEmptyDictionary = false;
    } else {
        m_heldValues.own.reset();
        const KeyList* rowsBefore = m_value.keyList();
        const KeyList* rowsAfter = value.keyList();
        if (rowsBefore && rowsAfter && !m_heldValues.items.isEmpty())
            m_heldValues.items = itemsFollowingRows(m_heldValues.items, *rowsBefore, *rowsAfter);
    }
    m_value = value;
    announceChange();
}

void PreferenceKey::setKeepsEmptyDictionary(bool keeps) {
    if (keeps == m_keepsEmptyDictionary)
        return;
    m_keepsEmptyDictionary = keeps;
    announceChange();
}

void PreferenceKey::replaceHeldValues(HeldValues held) {
    m_heldValues = std::move(held);
    announceChange();
}

void PreferenceKey::announceChange() {
    updateWritingOut();
    if (const auto payload = owningPayload()) {
        if (const auto profile = payload->profile())
            profile->keyDidChange(payload.get(), this);
    }
    notifyObservers();
    // Rules that target an ancestor hear of a change anywhere below it.
    for (Pointer ancestor = parentKey(); ancestor; ancestor = ancestor->parentKey())
        ancestor->notifyObservers();
}

void PreferenceKey::notifyObservers() {
    // A copy: an observer may add or remove observers while it is told.
    const auto observers = m_valueObservers;
    for (const auto& weakObserver : observers) {
        if (const auto observer = weakObserver.lock())
            observer->preferenceKeyValueDidChange(*this);
    }
}

void PreferenceKey::addObserver(const std::weak_ptr<PreferenceKeyObserver>& observer) {
    m_valueObservers.removeIf([](const auto& existing) { return existing.expired(); });
    m_valueObservers.append(observer);
}

void PreferenceKey::removeObserver(const PreferenceKeyObserver* observer) {
    m_valueObservers.removeIf([&](const auto& existing) {
        const auto live = existing.lock();
        return !live || live.get() == observer;
    });
}

bool PreferenceKey::isConventionalDictionary() const {
    return m_prototype->kind() == Kind::dictionary &&
           m_prototype->representedDictionary() != PFMKeyPrototype::RepresentableDictionary::customDictionary;
}

bool PreferenceKey::computeWritingOut() const {
    if (excluded() || m_prototype->ghost())
        return false;
    if (m_value.isAbsent())
        return m_keepsEmptyDictionary;
    if (!isConventionalDictionary())
        return true;
    const auto keys = children();
    return m_keepsEmptyDictionary ||
           (keys && std::any_of(keys->begin(), keys->end(),
                                [](const Pointer& child) { return child->m_isWritingOut; }));
}

void PreferenceKey::updateWritingOut() {
    const bool writingOut = computeWritingOut();
    if (writingOut == m_isWritingOut)
        return;
    m_isWritingOut = writingOut;
    // Whether a child must be there depends on whether its dictionary is used.
    if (const KeyMap* subkeys = m_value.keyMap()) {
        for (const Pointer& child : *subkeys)
            child->updateRequired();
    }
    if (const auto parent = parentKey())
        parent->updateWritingOut();
}

void PreferenceKey::updateRequired() {
    const bool own = m_prototype->required() || m_requiredByConditional;
    const auto parent = parentKey();
    setRequired(parent && !parent->m_isWritingOut ? own && parent->m_required : own);
}

void PreferenceKey::setRequired(bool required) {
    if (required == m_required)
        return;
    m_required = required;
    if (const auto keys = children()) {
        for (const Pointer& child : *keys)
            child->updateRequired();
    }
}

PreferenceKey::RequirementStatus PreferenceKey::requirementStatus() const {
    if (m_prototype->required()) {
        const auto parent = parentKey();
        if (!parent || parent->requirementStatus() == RequirementStatus::required)
            return RequirementStatus::required;
        return RequirementStatus::requiredConditionally;
    }
    const bool hasRequirementRule =
        std::any_of(m_conditionals.begin(), m_conditionals.end(), [](const auto& rule) {
            return rule->prototype().kind() == PFMConditionalPrototype::Kind::requirement;
        });
    return hasRequirementRule ? RequirementStatus::requiredConditionally : RequirementStatus::notRequired;
}

void PreferenceKey::updateExclusions() {
    bool requiredByRule = false;
    bool hide = false;
    bool disable = false;
    for (const auto& rule : m_conditionals) {
        if (!rule->lastEvaluationResult())
            continue;
        if (rule->prototype().kind() == PFMConditionalPrototype::Kind::requirement)
            requiredByRule = true;
        else if (rule->prototype().exclusionDisables())
            disable = true;
        else
            hide = true;
    }
    if (const auto parent = parentKey()) {
        hide = hide || parent->m_excludedHiddenByConditional;
        disable = disable || parent->m_excludedDisabledByConditional;
    }
    if (m_allExclusionsShouldDisable && hide) {
        hide = false;
        disable = true;
    }
    const bool wasExcluded = excluded();
    setExclusionFlags(hide, disable);
    if (excluded() != wasExcluded && isConventionalDictionary()) {
        if (const auto keys = children()) {
            for (const Pointer& child : *keys)
                child->updateExclusions();
        }
    }
    setRequiredByConditional(requiredByRule);
}

void PreferenceKey::setExclusionFlags(bool hidden, bool disabled) {
    const bool changed =
        hidden != m_excludedHiddenByConditional || disabled != m_excludedDisabledByConditional;
    m_excludedHiddenByConditional = hidden;
    m_excludedDisabledByConditional = disabled;
    if (changed)
        updateWritingOut();
}

void PreferenceKey::setRequiredByConditional(bool required) {
    if (required == m_requiredByConditional)
        return;
    m_requiredByConditional = required;
    updateRequired();
}

void PreferenceKey::setAllExclusionsShouldDisable(bool disable) {
    if (disable == m_allExclusionsShouldDisable)
        return;
    m_allExclusionsShouldDisable = disable;
    updateExclusions();
}

bool PreferenceKey::inheritedExclusionByRule() const {
    for (const PreferenceKey* key = this; key; key = key->m_parentKey.lock().get()) {
        const bool hasExclusion =
            std::any_of(key->m_conditionals.begin(), key->m_conditionals.end(), [](const auto& rule) {
                return rule->prototype().kind() == PFMConditionalPrototype::Kind::exclusion;
            });
        if (hasExclusion)
            return true;
    }
    return false;
}

QList<HeldValues::Entry> PreferenceKey::heldEntries() const {
    QList<HeldValues::Entry> entries;
    const auto& own = m_heldValues.own;
    if (own && (own->reason != HeldValues::Reason::excluded || excluded()))
        entries.append({own->reason, QString(), own->value});
    if (!holdsOnlyItsOwnValue())
        entries.append(m_heldValues.containerEntries());
    return entries;
}

void PreferenceKey::holdExcludedValues(bool insideHeldValue) {
    const plist::Value source = std::exchange(m_loadedSource, plist::Value());
    if (!insideHeldValue && excluded() && !source.isNull()) {
        if (!m_heldValues.own)
            m_heldValues.own = HeldValues::Own{HeldValues::Reason::excluded, source};
        insideHeldValue = true;
    }
    if (const auto keys = children()) {
        for (const Pointer& child : *keys)
            child->holdExcludedValues(insideHeldValue);
    }
}

// A held own value stands in for the key: of the wrong class there is no
// value beside it, a value a rule leaves out is written while it does, and a
// ghost's is written until the key is set.
std::optional<plist::Value> PreferenceKey::writeOutValue() const {
    const auto& own = m_heldValues.own;
    if (own && (own->reason != HeldValues::Reason::excluded || excluded()))
        return own->value;
    if (holdsOnlyItsOwnValue())
        return std::nullopt;
    if (m_value.isAbsent() && m_heldValues.isEmpty() && !m_keepsEmptyDictionary)
        return std::nullopt;
    if (m_prototype->kind() == Kind::array)
        return writeOutArray();
    if (isConventionalDictionary())
        return writeOutConventionalDictionary();
    if (const plist::Value* plain = m_value.plistValue())
        return *plain;
    return std::nullopt;
}

// An array that was set is written even when it ends up empty.
std::optional<plist::Value> PreferenceKey::writeOutArray() const {
    if (const KeyList* items = m_value.keyList()) {
        plist::Array written;
        for (const Pointer& item : *items) {
            if (auto itemValue = item->writeOutValue())
                written.append(std::move(*itemValue));
        }
        return plist::Value(m_heldValues.mergedItems(std::move(written)));
    }
    const plist::Value* raw = m_value.plistValue();
    if (raw && raw->isArray() && m_prototype->subkeys().isEmpty())
        return *raw;
    return std::nullopt;
}

std::optional<plist::Value> PreferenceKey::writeOutConventionalDictionary() const {
    plist::Dictionary written = m_heldValues.subkeys;
    if (const KeyMap* subkeys = m_value.keyMap()) {
        for (auto entry = subkeys->begin(); entry != subkeys->end(); ++entry) {
            if (auto childValue = entry.value()->writeOutValue())
                written.insert(entry.key(), *childValue);
        }
    }
    if (written.isEmpty() && !m_keepsEmptyDictionary)
        return std::nullopt;
    return plist::Value(std::move(written));
}

std::shared_ptr<Payload> PreferenceKey::owningPayload() const {
    for (const PreferenceKey* key = this; key;) {
        if (auto payload = key->m_parentPayload.lock())
            return payload;
        const auto parent = key->m_parentKey.lock();
        key = parent.get();
    }
    return nullptr;
}

std::optional<int> PreferenceKey::effectiveDisplayGroupIndex() const {
    if (m_prototype->displayGroupIndex())
        return m_prototype->displayGroupIndex();
    if (const auto parent = parentKey())
        return parent->effectiveDisplayGroupIndex();
    return std::nullopt;
}

std::optional<SupportedPlatforms> PreferenceKey::supportedPlatforms() const {
    if (m_internalSupportedPlatforms)
        return m_internalSupportedPlatforms;
    if (const auto parent = parentKey())
        return parent->supportedPlatforms();
    return std::nullopt;
}

QList<PFMXSupportedOSes> PreferenceKey::collectSupportedOSes() const {
    QList<PFMXSupportedOSes> collected;
    if (m_prototype->supportedOSes())
        collected.append(*m_prototype->supportedOSes());
    for (Pointer ancestor = parentKey(); ancestor; ancestor = ancestor->parentKey()) {
        if (ancestor->m_prototype->supportedOSes())
            collected.append(*ancestor->m_prototype->supportedOSes());
    }
    return collected;
}

std::optional<PreferenceKey::KeyList> PreferenceKey::children() const {
    if (m_prototype->kind() == Kind::dictionary) {
        if (const KeyMap* subkeys = m_value.keyMap())
            return subkeys->values();
        return std::nullopt;
    }
    if (m_prototype->kind() == Kind::array) {
        if (const KeyList* items = m_value.keyList())
            return *items;
    }
    return std::nullopt;
}

PreferenceKey::KeyList PreferenceKey::displayableSubkeys() {
    const KeyMap* subkeys = m_value.keyMap();
    if (!isConventionalDictionary() || !subkeys)
        return {shared_from_this()};
    KeyList flattened;
    for (const auto& subkeyPrototype : m_prototype->subkeys()) {
        if (!subkeyPrototype->name())
            continue;
        if (const Pointer child = subkeys->value(*subkeyPrototype->name()))
            flattened.append(child->displayableSubkeys());
    }
    return flattened;
}

void PreferenceKey::addConditional(const PFMConditionalPrototype& prototype, const PathMap& targets) {
    auto conditional = Conditional::make(prototype, shared_from_this(), targets);
    if (!conditional)
        return;
    m_conditionals.append(conditional);
    const bool result = conditional->evaluateAllConditions();
    if (result != conditional->lastEvaluationResult()) {
        conditional->setLastEvaluationResult(result);
        updateExclusions();
    }
}

bool PreferenceKey::restoreDefaultValues() {
    if (isScalarKind(m_prototype->kind())) {
        if (!m_prototype->defaultValue())
            return false;
        setValue(PreferenceKeyValue(*m_prototype->defaultValue()));
        return true;
    }
    // Only the first child that has a default is restored.
    if (const auto keys = children()) {
        for (const Pointer& child : *keys) {
            if (child->restoreDefaultValues())
                return true;
        }
    }
    return false;
}

bool PreferenceKey::hasDefaultAvailable() const {
    const auto& generate = m_prototype->defaultGenerate();
    return m_prototype->defaultValue().has_value() || (generate && !generate->isEmpty());
}

void PreferenceKey::setEmptyValue() {
    switch (m_prototype->kind()) {
    case Kind::string:
        setValue(plist::Value(QString()));
        break;
    case Kind::data:
        setValue(plist::Value(QByteArray()));
        break;
    case Kind::array:
        if (m_prototype->subkeys().isEmpty())
            setValue(plist::Value(plist::Array()));
        else
            setValue(KeyList());
        break;
    case Kind::dictionary:
        if (isConventionalDictionary())
            setValue(KeyMap());
        else
            setValue(plist::Value(plist::Dictionary()));
        break;
    default:
        break;
    }
}

int PreferenceKey::writeValueToFile(const QString& filePath) const {
    if (m_value.isAbsent())
        return 1;
    std::optional<plist::Value> toWrite;
    const plist::Value* plain = m_value.plistValue();
    if (plain && plain->isDictionary())
        toWrite = *plain;
    else if (m_prototype->kind() == Kind::array || m_value.keyMap())
        toWrite = writeOutValue();
    else
        return 2;
    if (!toWrite)
        return 3;
    const auto bytes = plist::XmlWriter::write(*toWrite);
    if (!bytes)
        return 3;
    QSaveFile file(filePath);
    if (!file.open(QIODevice::WriteOnly) || file.write(*bytes) != bytes->size() || !file.commit())
        return 4;
    return 0;
}

PreferenceKey::Pointer PreferenceKey::duplicateKey() const {
    const auto parent = parentKey();
    const auto payload = parentPayload();
    const auto written = writeOutValue();
    if (!written)
        return makeNew(m_prototype, parent, payload);
    // Through the serialised form, so that the copy shares nothing with the original.
    const auto bytes = plist::XmlWriter::write(*written);
    if (!bytes)
        return makeNew(m_prototype, parent, payload);
    const auto read = plist::PlistReader::read(*bytes);
    if (!read)
        return makeNew(m_prototype, parent, payload);
    return makeFromValue(m_prototype, read->root, parent, payload);
}

} // namespace quorlin
