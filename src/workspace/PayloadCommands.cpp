#include "workspace/PayloadCommands.h"

#include "workspace/PFMSectionViewController.h"

#include <algorithm>

namespace quorlin {

namespace {

void putBack(PFMSection& section, const Profile::Pointer& profile, const PlacedPayload& placed) {
    profile->insertPayload(placed.payload, placed.profileIndex);
    section.restorePayloadForm(profile, placed.payload, placed.formIndex);
}

void takeOut(PFMSection& section, const PlacedPayload& placed) {
    const PFMSectionViewController* form = section.sectionViewController();
    const int row = form ? form->indexOfPayload(placed.payload) : -1;
    if (row >= 0)
        section.removePayloads({row});
}

} // namespace

AddPayloadCommand::AddPayloadCommand(PFMSection& section, Profile::Pointer profile,
                                     PFMSection::AddPayloadResult* result)
    : m_section(&section)
    , m_profile(std::move(profile))
    , m_result(result) {
    setText(QStringLiteral("Add %1 Payload").arg(section.sectionProperties().title));
}

AddPayloadCommand::AddPayloadCommand(PFMSection& section, Profile::Pointer profile, QString filePath,
                                     PFMSection::AddPayloadResult* result)
    : AddPayloadCommand(section, std::move(profile), result) {
    m_filePath = std::move(filePath);
}

void AddPayloadCommand::redo() {
    if (!m_section)
        return;
    if (m_done) {
        if (didAdd())
            putBack(*m_section, m_profile, m_placed);
        return;
    }
    m_done = true;
    const auto result = m_section->addPayload(m_profile, m_filePath);
    if (m_result)
        *m_result = result;
    if (result != PFMSection::AddPayloadResult::added) {
        setObsolete(true);
        return;
    }
    const PFMSectionViewController* form = m_section->sectionViewController();
    m_placed.payload = form->payloadControllers().back()->payload();
    m_placed.formIndex = int(form->payloadControllers().size()) - 1;
    m_placed.profileIndex = m_profile->configurationPayloads().indexOf(m_placed.payload);
}

void AddPayloadCommand::undo() {
    if (m_section && didAdd())
        takeOut(*m_section, m_placed);
}

RemovePayloadsCommand::RemovePayloadsCommand(PFMSection& section, Profile::Pointer profile,
                                             const QList<int>& formIndexes)
    : m_section(&section)
    , m_profile(std::move(profile)) {
    setText(QStringLiteral("Remove %1 Payload").arg(section.sectionProperties().title));
    const PFMSectionViewController* form = section.sectionViewController();
    if (!form)
        return;
    QList<int> rows = formIndexes;
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    for (const int row : rows) {
        if (row < 0 || row >= int(form->payloadControllers().size()))
            continue;
        const auto payload = form->payloadControllers()[size_t(row)]->payload();
        m_placed.append({payload, row, m_profile->configurationPayloads().indexOf(payload)});
    }
}

void RemovePayloadsCommand::redo() {
    if (!m_section)
        return;
    for (auto placed = m_placed.crbegin(); placed != m_placed.crend(); ++placed)
        takeOut(*m_section, *placed);
}

void RemovePayloadsCommand::undo() {
    if (!m_section)
        return;
    for (const PlacedPayload& placed : m_placed)
        putBack(*m_section, m_profile, placed);
}

RemoveUnfamiliarPayloadsCommand::RemoveUnfamiliarPayloadsCommand(SectionArrayController& sections,
                                                                 PFMSection& section,
                                                                 Profile::Pointer profile)
    : m_sections(&sections)
    , m_section(&section)
    , m_payloadTypes(section.domains().keys())
    , m_profile(std::move(profile)) {
    setText(QStringLiteral("Remove %1 Payload").arg(section.sectionProperties().title));
}

void RemoveUnfamiliarPayloadsCommand::redo() {
    if (!m_sections)
        return;
    m_takenSection = m_sections->takeOwnedObject(m_section);
    m_removed = m_profile->removeUnfamiliarPayloads(m_payloadTypes);
}

void RemoveUnfamiliarPayloadsCommand::undo() {
    m_profile->restoreUnfamiliarPayloads(m_removed);
    m_removed.clear();
    if (m_sections)
        m_sections->insertOwnedObject(std::move(m_takenSection));
}

UnfamiliarKeysCommand::UnfamiliarKeysCommand(const QString& text, const Payload::Pointer& payload,
                                             std::optional<plist::Dictionary> after,
                                             std::function<void()> changed)
    : QUndoCommand(text)
    , m_payload(payload)
    , m_before(payload->unfamiliarPreferenceKeys())
    , m_after(std::move(after))
    , m_changed(std::move(changed)) {}

void UnfamiliarKeysCommand::redo() {
    if (const auto payload = m_payload.lock())
        payload->setUnfamiliarPreferenceKeys(m_after);
    m_changed();
}

void UnfamiliarKeysCommand::undo() {
    if (const auto payload = m_payload.lock())
        payload->setUnfamiliarPreferenceKeys(m_before);
    m_changed();
}

} // namespace quorlin
