#include "ui/SectionListModel.h"

#include "workspace/PayloadIconTable.h"

#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QImage>
#include <QPalette>
#include <QPixmap>

namespace quorlin {

namespace {

const QString defaultIconName = QStringLiteral("domainIconDefault");

} // namespace

SectionListModel::SectionListModel(SectionArrayController& list, std::optional<ResourceFolder> resources,
                                   QObject* parent)
    : QAbstractListModel(parent)
    , m_list(list)
    , m_resources(resources ? std::move(resources) : ResourceFolder::locate())
    , m_rows(list.arrangedObjects()) {
    connect(&m_list, &SectionArrayController::arrangedObjectsChanged, this,
            &SectionListModel::arrangedObjectsDidChange);
    connect(&m_list, &SectionArrayController::badgeChanged, this, &SectionListModel::badgeDidChange);
}

int SectionListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : int(m_rows.size());
}

PFMSection* SectionListModel::sectionAt(int row) const {
    return m_rows.value(row);
}

int SectionListModel::rowOf(const PFMSection* section) const {
    return int(m_rows.indexOf(section));
}

QVariant SectionListModel::data(const QModelIndex& index, int role) const {
    const PFMSection* section = index.isValid() ? sectionAt(index.row()) : nullptr;
    if (!section)
        return {};
    const bool isGroupTitle = section->sectionKind() == PFMSection::Kinds::groupTitle;
    switch (role) {
    case Qt::DisplayRole:
        return section->sectionProperties().title;
    case Qt::AccessibleTextRole:
        return accessibleText(*section);
    case DescriptionRole:
        return isGroupTitle ? QVariant() : QVariant(section->payloadsConfiguredString());
    case Qt::ToolTipRole:
        return isGroupTitle ? QVariant() : QVariant(section->domainsString());
    case Qt::DecorationRole:
        return isGroupTitle ? QVariant() : QVariant(iconOf(*section));
    case BadgeRole: {
        const auto badge = SectionArrayController::errorBadge(*section);
        return badge ? QVariant(*badge) : QVariant();
    }
    case IsGroupTitleRole:
        return isGroupTitle;
    case SectionRole:
        return QVariant::fromValue(const_cast<PFMSection*>(section));
    default:
        return {};
    }
}

Qt::ItemFlags SectionListModel::flags(const QModelIndex& index) const {
    const PFMSection* section = index.isValid() ? sectionAt(index.row()) : nullptr;
    if (!section)
        return Qt::NoItemFlags;
    if (section->sectionKind() == PFMSection::Kinds::groupTitle)
        return Qt::ItemIsEnabled;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable;
}

QHash<int, QByteArray> SectionListModel::roleNames() const {
    auto names = QAbstractListModel::roleNames();
    names.insert(SectionRole, "section");
    names.insert(DescriptionRole, "descriptionLine");
    names.insert(BadgeRole, "badge");
    names.insert(IsGroupTitleRole, "isGroupTitle");
    return names;
}

// What a screen reader says of a row: what the eye sees, badge included.
QString SectionListModel::accessibleText(const PFMSection& section) const {
    const QString title = section.sectionProperties().title;
    if (section.sectionKind() == PFMSection::Kinds::groupTitle)
        return title;
    QString text = tr("%1, %2").arg(title, section.payloadsConfiguredString());
    if (const auto badge = SectionArrayController::errorBadge(section))
        text = *badge == 1 ? tr("%1, 1 error").arg(text) : tr("%1, %2 errors").arg(text).arg(*badge);
    return text;
}

// A payload count that moves a section between blocks re-sorts the whole
// list; views keep their own selection in step with the list's.
void SectionListModel::arrangedObjectsDidChange() {
    beginResetModel();
    m_rows = m_list.arrangedObjects();
    // Unfamiliar sections die with their removal; their icons mustn't outlive them.
    for (auto it = m_icons.begin(); it != m_icons.end();) {
        if (m_list.content().contains(const_cast<PFMSection*>(it.key())))
            ++it;
        else
            it = m_icons.erase(it);
    }
    endResetModel();
}

void SectionListModel::badgeDidChange(PFMSection* section) {
    const int row = rowOf(section);
    if (row < 0)
        return;
    const QModelIndex changed = index(row);
    Q_EMIT dataChanged(changed, changed, {BadgeRole});
}

// The domain's own picture, else our icon of its payload, else the default.
QIcon SectionListModel::iconOf(const PFMSection& section) const {
    // The palette decides between the light and the dark set.
    const bool dark = QGuiApplication::palette().color(QPalette::Base).lightness() < 128;
    if (dark != m_iconsAreDark) {
        m_icons.clear();
        m_iconsAreDark = dark;
    }
    if (const auto cached = m_icons.constFind(&section); cached != m_icons.constEnd())
        return *cached;
    const PFMSectionProperties& properties = section.sectionProperties();
    QIcon icon;
    if (properties.icon) {
        const QImage image = QImage::fromData(*properties.icon);
        if (!image.isNull())
            icon = QIcon(QPixmap::fromImage(image));
    }
    if (icon.isNull())
        icon = payloadIcon(section, dark);
    if (icon.isNull())
        icon = bundledImage(defaultIconName);
    m_icons.insert(&section, icon);
    return icon;
}

QIcon SectionListModel::payloadIcon(const PFMSection& section, bool dark) const {
    if (!m_resources)
        return {};
    const auto domain = section.primaryDomain();
    const PayloadIconTable::Icon chosen = section.sectionKind() == PFMSection::Kinds::unfamiliar || !domain
                                              ? PayloadIconTable::unfamiliarIcon()
                                              : PayloadIconTable::iconForDomain(domain->domainString());
    const QDir folder(QDir(m_resources->path()).filePath(QStringLiteral("Images/Payloads")));
    const QString base = chosen.name() + (dark ? QStringLiteral("-dark") : QString());
    QIcon icon;
    // One bitmap per device scale the generator draws for.
    for (const int size : {28, 56, 84}) {
        const QString file = folder.filePath(QStringLiteral("%1-%2.png").arg(base).arg(size));
        if (QFileInfo::exists(file))
            icon.addFile(file, QSize(size, size));
    }
    return icon;
}

QIcon SectionListModel::bundledImage(const QString& name) const {
    if (const auto cached = m_bundledImages.constFind(name); cached != m_bundledImages.constEnd())
        return *cached;
    QIcon icon;
    if (m_resources) {
        const QString path = m_resources->imagePath(name);
        if (QFileInfo::exists(path))
            icon = QIcon(path);
    }
    m_bundledImages.insert(name, icon);
    return icon;
}

} // namespace quorlin
