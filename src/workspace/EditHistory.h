#pragma once

#include "fields/KeyValueWriter.h"
#include "model/Profile.h"
#include "workspace/PFMSection.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QUndoStack>

#include <memory>

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
    PFMSection::AddPayloadResult addPayload(PFMSection& section, const Profile::Pointer& profile);
    void removePayloads(PFMSection& section, const Profile::Pointer& profile, const QList<int>& formIndexes);
    void populateDefaults(PayloadViewController& form);

    // The writer that field instruments are given: their writes become steps here.
    std::shared_ptr<KeyValueWriter> keyValueWriter();

    // Where a key sits in its payload: top-level name, then subkey names and
    // item positions ("Accounts/2/Server"). Typing at one place merges.
    static QString editIdentity(const PreferenceKey& key);

Q_SIGNALS:
    void changeCountChanged(int changeCount);

private:
    class Writer;

    void followIndex();

    QUndoStack m_undoStack;
    int m_lastChangeCount = 0;
    std::shared_ptr<Writer> m_writer;
};

} // namespace quorlin
