#include "workspace/EditHistory.h"

#include "workspace/KeySnapshotCommand.h"
#include "workspace/KeyValueCommand.h"
#include "workspace/PayloadCommands.h"
#include "workspace/PayloadViewController.h"
#include "workspace/PlistValueBinder.h"
#include "workspace/RemoveHeldValuesCommand.h"
#include "workspace/UnfamiliarPayloadCommand.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace quorlin {

class EditHistory::Writer : public KeyValueWriter {
public:
    explicit Writer(EditHistory& history)
        : m_history(history) {}
    void writeValue(const PreferenceKey::Pointer& key, const PreferenceKeyValue& value,
                    const QString& editIdentity) override {
        m_history.setValue(key, value, editIdentity);
    }
    void writeValues(const QList<Change>& changes, const QString& actionName) override {
        m_history.setValues(changes, actionName);
    }
    void removeHeldValues(const PreferenceKey::KeyList& keys) override { m_history.removeHeldValues(keys); }

private:
    EditHistory& m_history;
};

EditHistory::EditHistory(QObject* parent)
    : QObject(parent)
    , m_writer(std::make_shared<Writer>(*this)) {
    connect(&m_undoStack, &QUndoStack::indexChanged, this, &EditHistory::followIndex);
    connect(&m_undoStack, &QUndoStack::cleanChanged, this, &EditHistory::followIndex);
}

EditHistory::~EditHistory() {
    // Commands hold keys and payloads; they go before anything they point into.
    disconnect(&m_undoStack, nullptr, this, nullptr);
    m_undoStack.clear();
}

int EditHistory::changeCount() const {
    const int clean = m_undoStack.cleanIndex();
    if (clean < 0)
        return std::max(1, m_undoStack.index());
    return std::abs(m_undoStack.index() - clean);
}

void EditHistory::followIndex() {
    const int count = changeCount();
    if (count == m_lastChangeCount)
        return;
    m_lastChangeCount = count;
    Q_EMIT changeCountChanged(count);
}

void EditHistory::setValue(const PreferenceKey::Pointer& key, const PreferenceKeyValue& value) {
    setValue(key, value, editIdentity(*key));
}

void EditHistory::setValue(const PreferenceKey::Pointer& key, const PreferenceKeyValue& value,
                           const QString& identity) {
    m_undoStack.push(new KeyValueCommand(key, value, identity));
}

void EditHistory::setValues(const QList<KeyValueWriter::Change>& changes, const QString& actionName) {
    if (changes.isEmpty())
        return;
    m_undoStack.beginMacro(actionName);
    for (const auto& [key, value] : changes)
        m_undoStack.push(new KeyValueCommand(key, value, QString()));
    m_undoStack.endMacro();
}

PFMSection::AddPayloadResult EditHistory::addPayload(PFMSection& section, const Profile::Pointer& profile,
                                                     const std::optional<QString>& filePath) {
    auto result = PFMSection::AddPayloadResult::refused;
    if (filePath)
        m_undoStack.push(new AddPayloadCommand(section, profile, *filePath, &result));
    else
        m_undoStack.push(new AddPayloadCommand(section, profile, &result));
    return result;
}

void EditHistory::removePayloads(PFMSection& section, const Profile::Pointer& profile,
                                 const QList<int>& formIndexes) {
    auto command = std::make_unique<RemovePayloadsCommand>(section, profile, formIndexes);
    if (!command->isEmpty())
        m_undoStack.push(command.release());
}

void EditHistory::removeUnfamiliarPreferenceKeys(const Payload::Pointer& payload) {
    if (!payload || !payload->unfamiliarPreferenceKeys())
        return;
    m_undoStack.push(new UnfamiliarKeysCommand(QStringLiteral("Remove Unfamiliar Properties"), payload,
                                               std::nullopt,
                                               [this] { Q_EMIT unfamiliarPreferenceKeysChanged(); }));
}

void EditHistory::removeHeldValues(const PreferenceKey::KeyList& keys) {
    auto command = std::make_unique<RemoveHeldValuesCommand>(
        keys, QStringLiteral("Remove Values the Manifest Doesn't Allow"));
    if (!command->isEmpty())
        m_undoStack.push(command.release());
}

void EditHistory::removeAllHeldValues(const Profile& profile) {
    QList<Payload::Pointer> payloads{profile.rootPayload()};
    payloads.append(profile.configurationPayloads());
    PreferenceKey::KeyList keys;
    for (const auto& payload : payloads) {
        for (const auto& place : payload->heldValuePlaces())
            keys.append(place.key);
    }
    auto command = std::make_unique<RemoveHeldValuesCommand>(
        keys, QStringLiteral("Remove Values the Manifests Don't Allow"));
    if (!command->isEmpty())
        m_undoStack.push(command.release());
}

void EditHistory::removeUnfamiliarPayloads(SectionArrayController& sections, PFMSection& section,
                                           const Profile::Pointer& profile) {
    if (section.sectionKind() != PFMSection::Kinds::unfamiliar || !sections.content().contains(&section))
        return;
    m_undoStack.push(new RemoveUnfamiliarPayloadsCommand(sections, section, profile));
}

bool EditHistory::setPayloadDictionary(const Payload::Pointer& payload, const plist::Dictionary& after) {
    if (!payload)
        return false;
    const plist::Dictionary before = payload->writeOutDictionary();
    QList<std::pair<PreferenceKey::Pointer, plist::Value>> changes;
    // Keys the manifest doesn't describe are kept as the payload's unfamiliar
    // ones, as when a file brings them.
    plist::Dictionary unfamiliar = payload->unfamiliarPreferenceKeys().value_or(plist::Dictionary());
    bool unfamiliarChanged = false;
    QStringList names = before.keys() + after.keys();
    names.removeDuplicates();
    for (const QString& name : names) {
        const plist::Value& now = after.value(name);
        if (before.value(name) == now)
            continue;
        const auto key = payload->keyAtPath(name);
        if (!key) {
            if (now.isNull())
                unfamiliar.remove(name);
            else
                unfamiliar.insert(name, now);
            unfamiliarChanged = true;
            continue;
        }
        // The manifest's types hold: a value it would have to hold as not fitting is refused.
        if (PlistValueBinder::misfitCount(*PreferenceKey::makeFromValue(key->prototypePointer(), now)) >
            PlistValueBinder::misfitCount(*key))
            return false;
        changes.append({key, now});
    }
    if (changes.isEmpty() && !unfamiliarChanged)
        return false;
    const QString text = QStringLiteral("Edit Property List");
    m_undoStack.beginMacro(text);
    if (!changes.isEmpty())
        m_undoStack.push(new KeySnapshotCommand(text, payload->preferenceKeys(), [changes] {
            for (const auto& [key, value] : changes)
                PlistValueBinder::bind(key, value);
        }));
    if (unfamiliarChanged)
        m_undoStack.push(new UnfamiliarKeysCommand(
            text, payload, unfamiliar.isEmpty() ? std::nullopt : std::optional(unfamiliar),
            [this] { Q_EMIT unfamiliarPreferenceKeysChanged(); }));
    m_undoStack.endMacro();
    return true;
}

bool EditHistory::replaceUnfamiliarPayload(const Profile::Pointer& profile, const QString& payloadType,
                                           int ordinal, const plist::Dictionary& after) {
    if (!profile || after.string(QStringLiteral("PayloadType")) != payloadType)
        return false;
    const auto& payloads = profile->unfamiliarPayloads();
    const auto count = std::count_if(payloads.begin(), payloads.end(), [&](const plist::Dictionary& payload) {
        return payload.string(QStringLiteral("PayloadType")) == payloadType;
    });
    if (ordinal < 0 || ordinal >= count)
        return false;
    m_undoStack.push(new UnfamiliarPayloadCommand(profile, payloadType, ordinal, after,
                                                  [this] { Q_EMIT unfamiliarPayloadChanged(); }));
    return true;
}

void EditHistory::repairBeforeSave(const Profile::Pointer& profile) {
    m_pendingRepair = nullptr;
    if (!profile || !needsRepair(*profile))
        return;
    PreferenceKey::KeyList keys = profile->rootPayload()->preferenceKeys();
    for (const auto& payload : profile->configurationPayloads())
        keys.append(payload->preferenceKeys());
    auto* repair = new KeySnapshotCommand(QStringLiteral("Repair Payload Identifiers"), keys,
                                          [profile] { profile->repairValidationErrors(); });
    m_undoStack.push(repair);
    m_pendingRepair = repair;
}

void EditHistory::dropRepairOfFailedSave() {
    QUndoCommand* repair = std::exchange(m_pendingRepair, nullptr);
    const int last = m_undoStack.index() - 1;
    if (!repair || last < 0 || m_undoStack.command(last) != repair)
        return;
    // An obsolete step leaves the stack on undo without being undone itself.
    repair->undo();
    repair->setObsolete(true);
    m_undoStack.undo();
}

bool EditHistory::needsRepair(const Profile& profile) {
    const auto errors = profile.validationErrors();
    return std::any_of(errors.begin(), errors.end(), [](const Profile::ValidationError& error) {
        using Kind = Profile::ValidationErrorKind;
        return error.kind == Kind::nonUniquePayloadUUIDFound ||
               error.kind == Kind::nonUniquePayloadIdentifierFound ||
               error.kind == Kind::identifierValueEqualsItsDefault;
    });
}

void EditHistory::populateDefaults(PayloadViewController& form) {
    const auto payload = form.payload();
    if (!payload)
        return;
    m_undoStack.push(new KeySnapshotCommand(QStringLiteral("Populate Default Values"),
                                            payload->preferenceKeys(), [&form] { form.restoreDefaults(); }));
}

std::shared_ptr<KeyValueWriter> EditHistory::keyValueWriter() {
    return m_writer;
}

QString EditHistory::editIdentity(const PreferenceKey& key) {
    QStringList components;
    const PreferenceKey* current = &key;
    while (current) {
        const auto parent = current->parentKey();
        QString component = current->name();
        if (parent && parent->value().keyList())
            component = QString::number(parent->value().keyList()->indexOf(
                std::const_pointer_cast<PreferenceKey>(current->shared_from_this())));
        components.prepend(component);
        current = parent.get();
    }
    return components.join(QLatin1Char('/'));
}

} // namespace quorlin
