#pragma once

#include "model/Profile.h"
#include "workspace/PFMSection.h"

#include <QList>
#include <QObject>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace quorlin {

// The list that a window's side-bar shows: the sections of the collection
// and the unfamiliar ones, sorted on their sorting string, filtered by the
// window's predicate, with a selection. It re-sorts whenever a section's
// payload count moves it between blocks.
class SectionArrayController : public QObject {
    Q_OBJECT

public:
    using Predicate = std::function<bool(const PFMSection&)>;

    explicit SectionArrayController(QObject* parent = nullptr);
    ~SectionArrayController() override;

    // The rows of the collection; they stay owned by it.
    void setContent(const QList<PFMSection*>& sections);
    // One section per type of the profile's payloads that no domain knows;
    // this list owns them.
    void addUnfamiliarSections(const Profile& profile);
    void removeObject(PFMSection* section);
    // Takes an unfamiliar section out and hands it over, so that undo can
    // give the very same row back; nothing for a section this list doesn't own.
    std::unique_ptr<PFMSection> takeOwnedObject(PFMSection* section);
    void insertOwnedObject(std::unique_ptr<PFMSection> section);

    const QList<PFMSection*>& content() const { return m_content; }
    // Filtered and sorted, as the side-bar shows them.
    const QList<PFMSection*>& arrangedObjects() const { return m_arrangedObjects; }
    void setFilterPredicate(Predicate predicate);
    void rearrangeObjects();

    // Rows of arrangedObjects.
    const QList<int>& selectionIndexes() const { return m_selectionIndexes; }
    void setSelectionIndexes(const QList<int>& rows);
    PFMSection* selectedObject() const;
    // The row a context menu was opened on; nothing for none.
    void setClickedRow(std::optional<int> row) { m_clickedRow = row; }
    // The clicked row's section if the row is valid, else the first selected.
    PFMSection* selectedOrClickedObject() const;
    // All rows above, or all rows below, the selection are group titles.
    bool isSelectionAdjacentToGroupTitle() const;

    // The red badge of a row: the section's error count, nothing at 0.
    static std::optional<int> errorBadge(const PFMSection& section);

Q_SIGNALS:
    void arrangedObjectsChanged();
    // The selected sections changed, by a call or because a re-sort or a
    // filter dropped one; after arrangedObjectsChanged when both happen.
    void selectionChanged();
    void badgeChanged(PFMSection* section);

private:
    void follow(PFMSection* section);

    QList<PFMSection*> m_content;
    QList<PFMSection*> m_arrangedObjects;
    std::vector<std::unique_ptr<PFMSection>> m_ownedSections;
    Predicate m_predicate;
    QList<int> m_selectionIndexes;
    std::optional<int> m_clickedRow;
};

} // namespace quorlin
