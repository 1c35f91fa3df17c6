#pragma once

#include "model/Profile.h"
#include "workspace/PFMSection.h"

#include <QList>
#include <QPointer>
#include <QUndoCommand>

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

    void redo() override;
    void undo() override;
    bool didAdd() const { return m_placed.payload != nullptr; }

private:
    QPointer<PFMSection> m_section;
    Profile::Pointer m_profile;
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

} // namespace quorlin
