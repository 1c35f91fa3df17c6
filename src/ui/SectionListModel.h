#pragma once

#include "supply/ResourceFolder.h"
#include "workspace/PFMSection.h"
#include "workspace/SectionArrayController.h"

#include <QAbstractListModel>
#include <QHash>
#include <QIcon>

#include <optional>

namespace quorlin {

// The rows of a window's side-bar as Qt's views read them: the arranged
// sections of one list, in its order, following its re-sorts and the
// error counts of its sections.
class SectionListModel : public QAbstractListModel {
    Q_OBJECT

public:
    enum Roles {
        SectionRole = Qt::UserRole + 1, // PFMSection*
        DescriptionRole,                // the second line: payloads configured
        BadgeRole,                      // the error count; invalid at 0
        IsGroupTitleRole,               // bool
    };

    // Images are looked up in `resources`; without one, in the folder beside
    // the executable.
    explicit SectionListModel(SectionArrayController& list,
                              std::optional<ResourceFolder> resources = std::nullopt,
                              QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QHash<int, QByteArray> roleNames() const override;

    PFMSection* sectionAt(int row) const;
    // The rows are the list's arranged objects; false between a re-sort of
    // the list and this model's reset.
    bool isInStep() const { return m_rows == m_list.arrangedObjects(); }
    // -1 when the section isn't shown.
    int rowOf(const PFMSection* section) const;

private:
    void arrangedObjectsDidChange();
    void badgeDidChange(PFMSection* section);
    QString accessibleText(const PFMSection& section) const;
    QIcon iconOf(const PFMSection& section) const;
    QIcon bundledImage(const QString& name) const;
    QIcon payloadIcon(const PFMSection& section, bool dark) const;

    SectionArrayController& m_list;
    std::optional<ResourceFolder> m_resources;
    // The rows as the views last heard of them.
    QList<PFMSection*> m_rows;
    mutable QHash<const PFMSection*, QIcon> m_icons;
    mutable QHash<QString, QIcon> m_bundledImages;
    mutable bool m_iconsAreDark = false;
};

} // namespace quorlin
