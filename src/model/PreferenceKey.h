#pragma once

#include "model/HeldValues.h"
#include "model/PreferenceKeyObserver.h"
#include "model/PreferenceKeyValue.h"
#include "plist/Value.h"
#include "schema/PFMConditionalPrototype.h"
#include "schema/PFMKeyPrototype.h"
#include "schema/PFMXSupportedOSes.h"
#include "schema/SupportedPlatforms.h"

#include <QList>
#include <QMap>
#include <QString>

#include <memory>
#include <optional>

namespace quorlin {

class Conditional;
class Payload;

// One value node of a payload, bound to its key prototype. The keys of a
// payload form a tree that follows the prototype tree; each node knows its
// value, whether it must be there, whether a rule hides or disables it, and
// whether it goes into the profile. Saving reads only `writeOutValue`.
//
// Ownership runs downward: a key owns its children (through its value) and
// its rules; parent, payload and observer links are weak.
class PreferenceKey : public std::enable_shared_from_this<PreferenceKey> {
public:
    enum class RequirementStatus { notRequired, required, requiredConditionally };
    using Pointer = std::shared_ptr<PreferenceKey>;
    using KeyList = PreferenceKeyValue::KeyList;
    using KeyMap = PreferenceKeyValue::KeyMap;
    using PrototypePointer = std::shared_ptr<const PFMKeyPrototype>;
    using PathMap = QMap<QString, Pointer>;

    // A key with its factory state: only a required key with a default gets
    // a value. Give a payload for a top-level key, a parent for any other.
    static Pointer makeNew(const PrototypePointer& prototype, const Pointer& parent = {},
                           const std::shared_ptr<Payload>& payload = {});
    // A key read from a profile. What the prototype can't bind is held (see
    // HeldValues) rather than dropped.
    static Pointer makeFromValue(const PrototypePointer& prototype, const plist::Value& value,
                                 const Pointer& parent = {}, const std::shared_ptr<Payload>& payload = {});

    ~PreferenceKey();
    PreferenceKey(const PreferenceKey&) = delete;
    PreferenceKey& operator=(const PreferenceKey&) = delete;

    const PFMKeyPrototype& prototype() const { return *m_prototype; }
    const PrototypePointer& prototypePointer() const { return m_prototype; }
    // The prototype's name, or an empty string for an array item.
    QString name() const;

    const PreferenceKeyValue& value() const { return m_value; }
    // Replaces the value, then tells the profile and the observers of this
    // key and of every ancestor. A new value replaces a held own value; no
    // value at all removes every held value of the key. Held items of an
    // array follow the rows they stood after.
    void setValue(const PreferenceKeyValue& value);
    // A dictionary the file gave empty is written so, until the key is removed.
    bool keepsEmptyDictionary() const { return m_keepsEmptyDictionary; }
    // For undoing a removal; tells as setValue does.
    void setKeepsEmptyDictionary(bool keeps);

    const HeldValues& heldValues() const { return m_heldValues; }
    // The held values that the profile gets from this key as it stands: a
    // value a rule left out counts only while the rule still holds, and
    // nothing inside an excluded key counts but its own.
    QList<HeldValues::Entry> heldEntries() const;
    // For removing held values and for undoing that; tells as setValue does.
    void replaceHeldValues(HeldValues held);
    // Once the payload's rules are linked: a value read from the file for a
    // key that a rule leaves out is held, so that saving keeps it.
    void holdExcludedValues(bool insideHeldValue = false);
    // The plist value that goes into the profile, or nothing.
    std::optional<plist::Value> writeOutValue() const;

    bool isWritingOut() const { return m_isWritingOut; }
    // An excluded key or a ghost writes nothing but its own held value, so
    // nothing below it counts.
    bool holdsOnlyItsOwnValue() const { return excluded() || m_prototype->ghost(); }
    bool required() const { return m_required; }
    bool requiredByConditional() const { return m_requiredByConditional; }
    bool excludedHiddenByConditional() const { return m_excludedHiddenByConditional; }
    bool excludedDisabledByConditional() const { return m_excludedDisabledByConditional; }
    bool excluded() const { return m_excludedHiddenByConditional || m_excludedDisabledByConditional; }
    bool allExclusionsShouldDisable() const { return m_allExclusionsShouldDisable; }
    // A form that can't hide rows asks for disabling instead.
    void setAllExclusionsShouldDisable(bool disable);

    void updateWritingOut();
    void updateRequired();
    void updateExclusions();
    RequirementStatus requirementStatus() const;
    bool inheritedExclusionByRule() const;

    Pointer parentKey() const { return m_parentKey.lock(); }
    std::shared_ptr<Payload> parentPayload() const { return m_parentPayload.lock(); }
    std::shared_ptr<Payload> owningPayload() const;
    std::optional<int> effectiveDisplayGroupIndex() const;
    std::optional<SupportedPlatforms> supportedPlatforms() const;
    // The extended availability of this key, then of each ancestor that has one.
    QList<PFMXSupportedOSes> collectSupportedOSes() const;

    // Dictionary values or array items that are keys; nothing for other kinds.
    std::optional<KeyList> children() const;
    // A conventional dictionary flattened in prototype order; any other key is itself.
    KeyList displayableSubkeys();

    const QList<std::shared_ptr<Conditional>>& conditionals() const { return m_conditionals; }
    void addConditional(const PFMConditionalPrototype& prototype, const PathMap& targets);

    void addObserver(const std::weak_ptr<PreferenceKeyObserver>& observer);
    void removeObserver(const PreferenceKeyObserver* observer);

    // True when some value was set to its default; containers stop at the
    // first child that succeeds.
    bool restoreDefaultValues();
    bool hasDefaultAvailable() const;
    // An explicit empty string, data, array or dictionary.
    void setEmptyValue();
    // 0 written, 1 no value, 2 neither array nor dictionary, 3 nothing to
    // write or no plist, 4 the file couldn't be written.
    int writeValueToFile(const QString& filePath) const;
    // A copy through the plist form, or a fresh key when nothing is written.
    Pointer duplicateKey() const;

private:
    PreferenceKey(PrototypePointer prototype);
    static Pointer construct(const PrototypePointer& prototype, const Pointer& parent,
                             const std::shared_ptr<Payload>& payload);

    void computeSupportedPlatforms();
    std::optional<KeyMap> buildSubkeys(const plist::Dictionary* source);
    PreferenceKeyValue buildItems(const plist::Value& source);
    bool computeWritingOut() const;
    void setRequired(bool required);
    void setExclusionFlags(bool hidden, bool disabled);
    void setRequiredByConditional(bool required);
    void notifyObservers();
    void announceChange();
    void holdOwnValue(HeldValues::Reason reason, const plist::Value& value);
    std::optional<plist::Value> writeOutArray() const;
    std::optional<plist::Value> writeOutConventionalDictionary() const;
    bool isConventionalDictionary() const;

    PrototypePointer m_prototype;
    QList<std::shared_ptr<Conditional>> m_conditionals;
    std::weak_ptr<PreferenceKey> m_parentKey;
    std::weak_ptr<Payload> m_parentPayload;
    std::optional<SupportedPlatforms> m_internalSupportedPlatforms;
    QList<std::weak_ptr<PreferenceKeyObserver>> m_valueObservers;
    bool m_required = false;
    bool m_requiredByConditional = false;
    PreferenceKeyValue m_value;
    HeldValues m_heldValues;
    // The value as read, until the payload's rules are linked.
    plist::Value m_loadedSource;
    bool m_excludedHiddenByConditional = false;
    bool m_excludedDisabledByConditional = false;
    bool m_isWritingOut = false;
    bool m_allExclusionsShouldDisable = false;
    bool m_keepsEmptyDictionary = false;
};

} // namespace quorlin
