#pragma once

#include "fields/KeyValueWriter.h"
#include "model/Profile.h"
#include "workspace/PFMSection.h"
#include "workspace/SectionArrayController.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QUndoStack>

#include <memory>
#include <optional>

namespace quorlin {

class PayloadViewController;

// The undo history of one document: every edit of its profile goes through
// here as a command. The document owns it; its change count is the distance
// from the state last saved, so undoing back to it leaves nothing to save.
class EditHistory : public QObject {
    Q_OBJECT

public:
    explicit EditHistory(QObject* parent = nullptr);
    ~EditHistory() override;

    QUndoStack& undoStack() { return m_undoStack; }
    // 0 at the saved state; any other state counts its distance from it, and
    // a state that can't go back to it counts at least 1.
    int changeCount() const;
    // The document was saved: this is the state without changes.
    void markSaved() { m_undoStack.setClean(); }

    void setValue(const PreferenceKey::Pointer& key, const PreferenceKeyValue& value);
    void setValue(const PreferenceKey::Pointer& key, const PreferenceKeyValue& value,
                  const QString& editIdentity);
    // Several keys as one step, named for the undo menu.
    void setValues(const QList<KeyValueWriter::Change>& changes, const QString& actionName);
    // With a file, for a file-based section; undo and redo keep the payload it made.
    PFMSection::AddPayloadResult addPayload(PFMSection& section, const Profile::Pointer& profile,
                                            const std::optional<QString>& filePath = std::nullopt);
    void removePayloads(PFMSection& section, const Profile::Pointer& profile, const QList<int>& formIndexes);
    // The keys of a payload that no manifest knows, as one step.
    void removeUnfamiliarPreferenceKeys(const Payload::Pointer& payload);
    // Every payload of an unfamiliar section, and its row, as one step.
    void removeUnfamiliarPayloads(SectionArrayController& sections, PFMSection& section,
                                  const Profile::Pointer& profile);
    void populateDefaults(PayloadViewController& form);
    // What the keys hold against their manifests, as one step: one key's
    // "Remove" in the form, or every key of the profile.
    void removeHeldValues(const PreferenceKey::KeyList& keys);
    void removeAllHeldValues(const Profile& profile);
    // The `ordinal`-th unfamiliar payload of its type becomes `after`; refused
    // (false) when it isn't there or `after` changes its type.
    // The raw editor's edit of a payload a manifest describes: each top-level
    // key whose written value differs in `after` is bound to its new value,
    // nested values included, or goes when gone, as one step. Refused (false)
    // for a key the manifest doesn't know or a value that doesn't fit its
    // type where the manifest describes one; entries it doesn't describe are
    // held, as a file's are.
    bool setPayloadDictionary(const Payload::Pointer& payload, const plist::Dictionary& after);
    bool replaceUnfamiliarPayload(const Profile::Pointer& profile, const QString& payloadType, int ordinal,
                                  const plist::Dictionary& after);

    // A save repairs duplicate and default identifiers before it writes.
    // Doing it here first makes the repair a step of its own, so that the
    // saved state is where the history stands and undo goes back past it.
    void repairBeforeSave(const Profile::Pointer& profile);
    // The save didn't happen: the repair it made goes, as if never done.
    void dropRepairOfFailedSave();

    // The writer that field instruments are given: their writes become steps here.
    std::shared_ptr<KeyValueWriter> keyValueWriter();

    // Where a key sits in its payload: top-level name, then subkey names and
    // item positions ("Accounts/2/Server"). Typing at one place merges.
    static QString editIdentity(const PreferenceKey& key);

Q_SIGNALS:
    // A payload's unfamiliar keys went or came back; forms show a notice of them.
    void unfamiliarPreferenceKeysChanged();
    // An unfamiliar payload changed, by an edit, its undo or its redo.
    void unfamiliarPayloadChanged();
    void changeCountChanged(int changeCount);

private:
    class Writer;

    void followIndex();
    static bool needsRepair(const Profile& profile);

    QUndoStack m_undoStack;
    int m_lastChangeCount = 0;
    std::shared_ptr<Writer> m_writer;
    // The repair of the save under way, while it is the last step.
    QUndoCommand* m_pendingRepair = nullptr;
};

} // namespace quorlin
