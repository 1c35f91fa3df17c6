#include "IconDesign.h"

namespace quorlin::icons {

namespace {

const QColor ink(0x1f, 0x3a, 0x5f);
const QColor paper(0xfb, 0xfc, 0xfe);
const QColor foldShade(0xc6, 0xd4, 0xe8);
const QColor lineShade(0x9d, 0xb1, 0xcc);
const QColor shieldGreen(0x1c, 0x8a, 0x6f);
const QColor white(0xff, 0xff, 0xff);

// The page's outline: corners rounded but the top right one, which is folded over.
constexpr qreal pageLeft = 48;
constexpr qreal pageRight = 208;
constexpr qreal pageTop = 20;
constexpr qreal pageBottom = 236;
constexpr qreal foldSize = 44;
constexpr qreal cornerRadius = 14;

} // namespace

QList<IconLayer> IconDesign::layers() {
    return {
        {page(), paper, ink, 8, 0},
        {fold(), foldShade, ink, 8, 0},
        {textLines(), lineShade, QColor(), 0, 48},
        {shield(), shieldGreen, QColor(), 0, 0},
        {tick(), QColor(), white, 14, 0},
    };
}

QPainterPath IconDesign::page() {
    const qreal diameter = 2 * cornerRadius;
    QPainterPath path;
    path.moveTo(pageRight - foldSize, pageTop);
    path.lineTo(pageRight, pageTop + foldSize);
    path.lineTo(pageRight, pageBottom - cornerRadius);
    path.arcTo(pageRight - diameter, pageBottom - diameter, diameter, diameter, 0, -90);
    path.lineTo(pageLeft + cornerRadius, pageBottom);
    path.arcTo(pageLeft, pageBottom - diameter, diameter, diameter, -90, -90);
    path.lineTo(pageLeft, pageTop + cornerRadius);
    path.arcTo(pageLeft, pageTop, diameter, diameter, 180, -90);
    path.closeSubpath();
    return path;
}

QPainterPath IconDesign::fold() {
    QPainterPath path;
    path.moveTo(pageRight - foldSize, pageTop);
    path.lineTo(pageRight - foldSize, pageTop + foldSize - 8);
    path.quadTo(pageRight - foldSize, pageTop + foldSize, pageRight - foldSize + 8, pageTop + foldSize);
    path.lineTo(pageRight, pageTop + foldSize);
    path.closeSubpath();
    return path;
}

// Two rows of "text" above the shield; they say "document" at sizes that can show them.
QPainterPath IconDesign::textLines() {
    QPainterPath path;
    path.addRoundedRect(QRectF(pageLeft + 26, 58, 84, 12), 6, 6);
    path.addRoundedRect(QRectF(pageLeft + 26, 82, 108, 12), 6, 6);
    return path;
}

QPainterPath IconDesign::shield() {
    QPainterPath path;
    path.moveTo(128, 108);
    path.cubicTo(144, 118, 160, 122, 178, 122);
    path.lineTo(178, 158);
    path.cubicTo(178, 188, 158, 208, 128, 222);
    path.cubicTo(98, 208, 78, 188, 78, 158);
    path.lineTo(78, 122);
    path.cubicTo(96, 122, 112, 118, 128, 108);
    path.closeSubpath();
    return path;
}

QPainterPath IconDesign::tick() {
    QPainterPath path;
    path.moveTo(104, 164);
    path.lineTo(121, 181);
    path.lineTo(153, 145);
    return path;
}

} // namespace quorlin::icons
