#include "workspace/SectionArrayController.h"

#include <algorithm>

namespace quorlin {

SectionArrayController::SectionArrayController(QObject* parent)
    : QObject(parent) {}

SectionArrayController::~SectionArrayController() = default;

void SectionArrayController::setContent(const QList<PFMSection*>& sections) {
    for (PFMSection* section : m_content)
        disconnect(section, nullptr, this, nullptr);
    m_content = sections;
    for (PFMSection* section : m_content)
        follow(section);
    rearrangeObjects();
}

void SectionArrayController::follow(PFMSection* section) {
    connect(section, &PFMSection::payloadsConfiguredChanged, this, &SectionArrayController::rearrangeObjects);
    connect(section, &PFMSection::errorCountChanged, this, [this, section] { Q_EMIT badgeChanged(section); });
}

void SectionArrayController::addUnfamiliarSections(const Profile& profile) {
    for (const plist::Dictionary& payload : profile.unfamiliarPayloads()) {
        const auto type = payload.string(QStringLiteral("PayloadType"));
        if (!type)
            continue;
        const auto existing = std::find_if(m_content.begin(), m_content.end(), [&](PFMSection* section) {
            return section->sectionKind() == PFMSection::Kinds::unfamiliar &&
                   section->domains().contains(*type);
        });
        if (existing != m_content.end()) {
            (*existing)->setPayloadsConfigured((*existing)->payloadsConfigured() + 1);
            continue;
        }
        auto section = PFMSection::makeUnfamiliar(payload);
        if (!section)
            continue;
        m_content.append(section.get());
        follow(section.get());
        m_ownedSections.push_back(std::move(section));
    }
    rearrangeObjects();
}

void SectionArrayController::removeObject(PFMSection* section) {
    if (!m_content.removeOne(section))
        return;
    disconnect(section, nullptr, this, nullptr);
    rearrangeObjects();
    std::erase_if(m_ownedSections, [&](const auto& owned) { return owned.get() == section; });
}

std::unique_ptr<PFMSection> SectionArrayController::takeOwnedObject(PFMSection* section) {
    const auto owned = std::find_if(m_ownedSections.begin(), m_ownedSections.end(),
                                    [&](const auto& candidate) { return candidate.get() == section; });
    if (owned == m_ownedSections.end())
        return nullptr;
    std::unique_ptr<PFMSection> taken = std::move(*owned);
    m_ownedSections.erase(owned);
    m_content.removeOne(section);
    disconnect(section, nullptr, this, nullptr);
    rearrangeObjects();
    return taken;
}

void SectionArrayController::insertOwnedObject(std::unique_ptr<PFMSection> section) {
    if (!section || m_content.contains(section.get()))
        return;
    m_content.append(section.get());
    follow(section.get());
    m_ownedSections.push_back(std::move(section));
    rearrangeObjects();
}

void SectionArrayController::setFilterPredicate(Predicate predicate) {
    m_predicate = std::move(predicate);
    rearrangeObjects();
}

// The selection follows its sections, not its rows, through a re-sort.
void SectionArrayController::rearrangeObjects() {
    QList<PFMSection*> selected;
    for (const int row : m_selectionIndexes)
        selected.append(m_arrangedObjects.value(row));
    QList<std::pair<QString, PFMSection*>> keyed;
    for (PFMSection* section : m_content) {
        if (!m_predicate || m_predicate(*section))
            keyed.append({section->sortingString(), section});
    }
    std::stable_sort(keyed.begin(), keyed.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    m_arrangedObjects.clear();
    for (const auto& entry : keyed)
        m_arrangedObjects.append(entry.second);
    m_selectionIndexes.clear();
    for (PFMSection* section : selected) {
        const auto row = m_arrangedObjects.indexOf(section);
        if (row >= 0)
            m_selectionIndexes.append(int(row));
    }
    std::sort(m_selectionIndexes.begin(), m_selectionIndexes.end());
    const bool selectionLost = m_selectionIndexes.size() != selected.size();
    Q_EMIT arrangedObjectsChanged();
    if (selectionLost)
        Q_EMIT selectionChanged();
}

void SectionArrayController::setSelectionIndexes(const QList<int>& rows) {
    QList<int> valid;
    for (const int row : rows) {
        if (row >= 0 && row < m_arrangedObjects.size() && !valid.contains(row))
            valid.append(row);
    }
    std::sort(valid.begin(), valid.end());
    if (valid == m_selectionIndexes)
        return;
    m_selectionIndexes = valid;
    Q_EMIT selectionChanged();
}

PFMSection* SectionArrayController::selectedObject() const {
    return m_selectionIndexes.isEmpty() ? nullptr : m_arrangedObjects.value(m_selectionIndexes.first());
}

PFMSection* SectionArrayController::selectedOrClickedObject() const {
    if (m_clickedRow && *m_clickedRow >= 0 && *m_clickedRow < m_arrangedObjects.size())
        return m_arrangedObjects.value(*m_clickedRow);
    return selectedObject();
}

bool SectionArrayController::isSelectionAdjacentToGroupTitle() const {
    if (m_selectionIndexes.isEmpty())
        return false;
    const auto isGroupTitle = [this](int row) {
        return m_arrangedObjects.value(row)->sectionKind() == PFMSection::Kinds::groupTitle;
    };
    bool allAbove = true;
    for (int row = 0; row < m_selectionIndexes.first(); ++row)
        allAbove = allAbove && isGroupTitle(row);
    bool allBelow = true;
    for (int row = m_selectionIndexes.last() + 1; row < m_arrangedObjects.size(); ++row)
        allBelow = allBelow && isGroupTitle(row);
    return allAbove || allBelow;
}

std::optional<int> SectionArrayController::errorBadge(const PFMSection& section) {
    const int count = section.errorCount();
    return count > 0 ? std::optional<int>(count) : std::nullopt;
}

} // namespace quorlin
