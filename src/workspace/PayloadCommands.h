#pragma once

#include "model/Profile.h"
#include "workspace/PFMSection.h"
#include "workspace/SectionArrayController.h"

#include <QList>
#include <QPointer>
#include <QUndoCommand>

#include <functional>

namespace quorlin {

// Where a payload stood when it was taken out: its form's row in the
// section and its place among the profile's payloads.
struct PlacedPayload {
    Payload::Pointer payload;
    int formIndex = 0;
    qsizetype profileIndex = 0;
};

// A new payload of a section. Undo takes it out; redo puts the very same
// payload back, so its UUID and name don't change between the two.
class AddPayloadCommand : public QUndoCommand {
public:
    // A refused add makes the command obsolete, so no empty step is left;
    // `result` learns what the section answered.
    AddPayloadCommand(PFMSection& section, Profile::Pointer profile,
                      PFMSection::AddPayloadResult* result = nullptr);
    // The payload of a file, for a file-based section.
    AddPayloadCommand(PFMSection& section, Profile::Pointer profile, QString filePath,
                      PFMSection::AddPayloadResult* result = nullptr);

    void redo() override;
    void undo() override;
    bool didAdd() const { return m_placed.payload != nullptr; }

private:
    QPointer<PFMSection> m_section;
    Profile::Pointer m_profile;
    std::optional<QString> m_filePath;
    PFMSection::AddPayloadResult* m_result;
    PlacedPayload m_placed;
    bool m_done = false;
};

// Payloads of a section taken out by their forms' rows.
class RemovePayloadsCommand : public QUndoCommand {
public:
    RemovePayloadsCommand(PFMSection& section, Profile::Pointer profile, const QList<int>& formIndexes);

    void redo() override;
    void undo() override;
    bool isEmpty() const { return m_placed.isEmpty(); }

private:
    QPointer<PFMSection> m_section;
    Profile::Pointer m_profile;
    // In ascending order of form row, so putting them back in order restores both lists.
    QList<PlacedPayload> m_placed;
};

// All payloads of an unfamiliar section, and its row in the side-bar, as
// one step. The section is kept while it is out, so undo brings back the
// same row.
class RemoveUnfamiliarPayloadsCommand : public QUndoCommand {
public:
    RemoveUnfamiliarPayloadsCommand(SectionArrayController& sections, PFMSection& section,
                                    Profile::Pointer profile);

    void redo() override;
    void undo() override;

private:
    QPointer<SectionArrayController> m_sections;
    PFMSection* m_section;
    QStringList m_payloadTypes;
    Profile::Pointer m_profile;
    std::unique_ptr<PFMSection> m_takenSection;
    QList<Profile::PlacedUnfamiliarPayload> m_removed;
};

// Sets or drops the keys of a payload that no manifest knows. They are no
// preference keys, so no key snapshot holds them: the command keeps them for undo.
class UnfamiliarKeysCommand : public QUndoCommand {
public:
    UnfamiliarKeysCommand(const QString& text, const Payload::Pointer& payload,
                          std::optional<plist::Dictionary> after, std::function<void()> changed);

    void redo() override;
    void undo() override;

private:
    std::weak_ptr<Payload> m_payload;
    std::optional<plist::Dictionary> m_before;
    std::optional<plist::Dictionary> m_after;
    std::function<void()> m_changed;
};

} // namespace quorlin
