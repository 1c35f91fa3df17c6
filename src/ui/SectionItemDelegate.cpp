#include "ui/SectionItemDelegate.h"

#include "ui/SectionListModel.h"

#include <QApplication>
#include <QIcon>
#include <QPainter>
#include <QPainterPath>

namespace quorlin {

namespace {

constexpr int margin = 6;
constexpr int iconSide = 28;
constexpr int badgePadding = 6;

QFont smallerFont(const QFont& font, qreal factor = 0.85) {
    QFont smaller = font;
    if (font.pointSizeF() > 0)
        smaller.setPointSizeF(font.pointSizeF() * factor);
    else
        smaller.setPixelSize(std::max(1, int(font.pixelSize() * factor)));
    return smaller;
}

QFont badgeFont(const QFont& font) {
    QFont bold = smallerFont(font);
    bold.setBold(true);
    return bold;
}

QFont groupTitleFont(const QFont& font) {
    QFont bold = smallerFont(font, 0.9);
    bold.setBold(true);
    return bold;
}

} // namespace

QSize SectionItemDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    const int width = option.rect.width() > 0 ? option.rect.width() : 200;
    if (index.data(SectionListModel::IsGroupTitleRole).toBool())
        return {width, QFontMetrics(groupTitleFont(option.font)).height() + 2 * margin};
    const int textHeight =
        QFontMetrics(option.font).height() + QFontMetrics(smallerFont(option.font)).height();
    return {width, std::max(iconSide, textHeight) + 2 * margin};
}

void SectionItemDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                                const QModelIndex& index) const {
    painter->save();
    if (index.data(SectionListModel::IsGroupTitleRole).toBool())
        paintGroupTitle(painter, option, index);
    else {
        QStyleOptionViewItem styled = option;
        initStyleOption(&styled, index);
        paintSection(painter, styled, index);
    }
    painter->restore();
}

void SectionItemDelegate::paintGroupTitle(QPainter* painter, const QStyleOptionViewItem& option,
                                          const QModelIndex& index) const {
    const QFont font = groupTitleFont(option.font);
    painter->setFont(font);
    painter->setPen(option.palette.color(QPalette::Disabled, QPalette::Text));
    const QRect textRect = option.rect.adjusted(margin, 0, -margin, 0);
    const QString title = QFontMetrics(font).elidedText(index.data(Qt::DisplayRole).toString(),
                                                        Qt::ElideRight, textRect.width());
    painter->drawText(textRect, Qt::AlignLeft | Qt::AlignBottom | Qt::TextSingleLine, title);
}

void SectionItemDelegate::paintSection(QPainter* painter, const QStyleOptionViewItem& option,
                                       const QModelIndex& index) const {
    const QWidget* widget = option.widget;
    QStyle* style = widget ? widget->style() : QApplication::style();
    style->drawPrimitive(QStyle::PE_PanelItemViewItem, &option, painter, widget);

    const QRect row = option.rect.adjusted(margin, margin, -margin, -margin);
    const QRect iconRect(row.left(), row.center().y() - iconSide / 2 + 1, iconSide, iconSide);
    const QIcon icon = index.data(Qt::DecorationRole).value<QIcon>();
    if (!icon.isNull()) {
        // Sharp on high-density screens: the pixmap is made at the device's ratio.
        const qreal ratio = painter->device() ? painter->device()->devicePixelRatioF() : 1.0;
        const QPixmap pixmap = icon.pixmap(iconRect.size(), ratio);
        painter->drawPixmap(iconRect, pixmap);
    }

    int textRight = row.right();
    const QVariant badge = index.data(SectionListModel::BadgeRole);
    if (badge.isValid()) {
        const QRect rect = badgeRect(option.rect, option.font, badge.toInt());
        paintBadge(painter, rect, option.font, badge.toInt());
        textRight = rect.left() - margin;
    }

    const bool selected = option.state & QStyle::State_Selected;
    const QPalette::ColorGroup group =
        option.state & QStyle::State_Enabled ? QPalette::Normal : QPalette::Disabled;
    const QColor textColor =
        option.palette.color(group, selected ? QPalette::HighlightedText : QPalette::Text);
    QColor secondColor = textColor;
    secondColor.setAlphaF(0.65f);

    const int textLeft = iconRect.right() + margin + 1;
    const QFont secondFont = smallerFont(option.font);
    const QFontMetrics titleMetrics(option.font);
    const QFontMetrics secondMetrics(secondFont);
    const int textHeight = titleMetrics.height() + secondMetrics.height();
    const int top = row.center().y() - textHeight / 2 + 1;
    const QRect titleRect(textLeft, top, std::max(0, textRight - textLeft), titleMetrics.height());
    const QRect secondRect(textLeft, titleRect.bottom() + 1, titleRect.width(), secondMetrics.height());

    painter->setFont(option.font);
    painter->setPen(textColor);
    painter->drawText(
        titleRect, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
        titleMetrics.elidedText(index.data(Qt::DisplayRole).toString(), Qt::ElideRight, titleRect.width()));
    painter->setFont(secondFont);
    painter->setPen(secondColor);
    painter->drawText(secondRect, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                      secondMetrics.elidedText(index.data(SectionListModel::DescriptionRole).toString(),
                                               Qt::ElideRight, secondRect.width()));
}

QRect SectionItemDelegate::badgeRect(const QRect& rowRect, const QFont& font, int count) {
    const QFontMetrics metrics(badgeFont(font));
    const int height = metrics.height() + 2;
    const int width = std::max(height, metrics.horizontalAdvance(QString::number(count)) + 2 * badgePadding);
    return {rowRect.right() - margin - width + 1, rowRect.center().y() - height / 2 + 1, width, height};
}

void SectionItemDelegate::paintBadge(QPainter* painter, const QRect& rect, const QFont& font, int count) {
    painter->setRenderHint(QPainter::Antialiasing);
    QPainterPath path;
    path.addRoundedRect(QRectF(rect), rect.height() / 2.0, rect.height() / 2.0);
    painter->fillPath(path, QColor(0xe0, 0x2b, 0x27));
    painter->setFont(badgeFont(font));
    painter->setPen(Qt::white);
    painter->drawText(rect, Qt::AlignCenter, QString::number(count));
}

} // namespace quorlin
