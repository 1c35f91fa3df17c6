#pragma once

#include <QStyledItemDelegate>

namespace quorlin {

// Draws a side-bar row: the icon, the title over a smaller second line, and
// at the right a red rounded badge with the error count. Group titles are
// drawn as small headers without an icon.
class SectionItemDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

    // Where the badge of a row with `count` errors sits, inside `rowRect`.
    static QRect badgeRect(const QRect& rowRect, const QFont& font, int count);

private:
    void paintGroupTitle(QPainter* painter, const QStyleOptionViewItem& option,
                         const QModelIndex& index) const;
    void paintSection(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const;
    static void paintBadge(QPainter* painter, const QRect& rect, const QFont& font, int count);
};

} // namespace quorlin
