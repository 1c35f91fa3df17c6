#include "PayloadIconDesign.h"

#include <QHash>
#include <QtMath>

#include <functional>

namespace quorlin::icons {

namespace {

constexpr qreal glyphStroke = 16;
const QRectF tile(16, 16, 224, 224);

QPainterPath circle(qreal x, qreal y, qreal radius) {
    QPainterPath path;
    path.addEllipse(QPointF(x, y), radius, radius);
    return path;
}

QPainterPath arc(qreal x, qreal y, qreal radius, qreal start, qreal sweep) {
    QPainterPath path;
    const QRectF box(x - radius, y - radius, 2 * radius, 2 * radius);
    path.arcMoveTo(box, start);
    path.arcTo(box, start, sweep);
    return path;
}

QPainterPath lines(std::initializer_list<QPointF> points) {
    QPainterPath path;
    bool first = true;
    for (const QPointF& point : points) {
        first ? path.moveTo(point) : path.lineTo(point);
        first = false;
    }
    return path;
}

QPainterPath rect(qreal x, qreal y, qreal width, qreal height, qreal radius = 10) {
    QPainterPath path;
    path.addRoundedRect(QRectF(x, y, width, height), radius, radius);
    return path;
}

QPainterPath person(qreal x, qreal y, qreal scale) {
    QPainterPath path = circle(x, y - 28 * scale, 22 * scale);
    path.addPath(arc(x, y + 58 * scale, 46 * scale, 0, 180));
    return path;
}

QPainterPath lock() {
    QPainterPath path = rect(80, 116, 96, 72);
    path.addPath(lines({{100, 116}, {100, 96}}));
    path.addPath(arc(128, 96, 28, 0, 180));
    path.addPath(lines({{156, 96}, {156, 116}}));
    return path;
}

QPainterPath shield() {
    QPainterPath path;
    path.moveTo(128, 68);
    path.cubicTo(148, 80, 166, 84, 184, 84);
    path.lineTo(184, 124);
    path.cubicTo(184, 160, 160, 180, 128, 196);
    path.cubicTo(96, 180, 72, 160, 72, 124);
    path.lineTo(72, 84);
    path.cubicTo(90, 84, 108, 80, 128, 68);
    path.closeSubpath();
    return path;
}

QPainterPath gear() {
    QPainterPath path = circle(128, 128, 24);
    path.addPath(circle(128, 128, 50));
    for (int tooth = 0; tooth < 8; ++tooth) {
        const qreal angle = qDegreesToRadians(tooth * 45.0);
        path.addPath(lines({{128 + 50 * qCos(angle), 128 + 50 * qSin(angle)},
                            {128 + 70 * qCos(angle), 128 + 70 * qSin(angle)}}));
    }
    return path;
}

using Maker = std::function<QPainterPath()>;

const QHash<QString, Maker>& glyphs() {
    static const QHash<QString, Maker> made{
        {QStringLiteral("wifi"),
         [] {
             QPainterPath path = arc(128, 180, 100, 45, 90);
             path.addPath(arc(128, 180, 66, 45, 90));
             path.addPath(arc(128, 180, 32, 45, 90));
             path.addPath(circle(128, 180, 4));
             return path;
         }},
        {QStringLiteral("vpn"),
         [] {
             QPainterPath path = rect(64, 92, 128, 72, 36);
             path.addPath(lines({{100, 128}, {156, 128}}));
             path.addPath(lines({{140, 112}, {156, 128}, {140, 144}}));
             return path;
         }},
        {QStringLiteral("ethernet"),
         [] {
             QPainterPath path = lines({{76, 80},
                                        {180, 80},
                                        {180, 152},
                                        {156, 152},
                                        {156, 176},
                                        {100, 176},
                                        {100, 152},
                                        {76, 152},
                                        {76, 80}});
             path.addPath(lines({{108, 104}, {108, 124}}));
             path.addPath(lines({{128, 104}, {128, 124}}));
             path.addPath(lines({{148, 104}, {148, 124}}));
             return path;
         }},
        {QStringLiteral("cellular"),
         [] {
             QPainterPath path = lines({{76, 184}, {76, 160}});
             path.addPath(lines({{110, 184}, {110, 136}}));
             path.addPath(lines({{144, 184}, {144, 108}}));
             path.addPath(lines({{178, 184}, {178, 76}}));
             return path;
         }},
        {QStringLiteral("dns"),
         [] {
             QPainterPath path = circle(128, 128, 64);
             path.addPath(lines({{64, 128}, {192, 128}}));
             QPainterPath meridian;
             meridian.addEllipse(QPointF(128, 128), 28, 64);
             path.addPath(meridian);
             return path;
         }},
        {QStringLiteral("proxy"),
         [] {
             QPainterPath path = lines({{72, 104}, {176, 104}});
             path.addPath(lines({{152, 80}, {176, 104}, {152, 128}}));
             path.addPath(lines({{184, 152}, {80, 152}}));
             path.addPath(lines({{104, 128}, {80, 152}, {104, 176}}));
             return path;
         }},
        {QStringLiteral("link"),
         [] {
             QPainterPath path = rect(60, 104, 80, 48, 24);
             path.addPath(rect(116, 104, 80, 48, 24));
             return path;
         }},
        {QStringLiteral("certificate"),
         [] {
             QPainterPath path = rect(64, 68, 128, 92);
             path.addPath(lines({{88, 96}, {168, 96}}));
             path.addPath(lines({{88, 120}, {132, 120}}));
             path.addPath(circle(160, 160, 20));
             path.addPath(lines({{150, 178}, {146, 200}, {160, 192}, {174, 200}, {170, 178}}));
             return path;
         }},
        {QStringLiteral("request"),
         [] {
             QPainterPath path = rect(64, 68, 104, 120);
             path.addPath(lines({{88, 100}, {144, 100}}));
             path.addPath(lines({{88, 124}, {128, 124}}));
             path.addPath(lines({{168, 176}, {196, 176}}));
             path.addPath(lines({{182, 162}, {182, 190}}));
             return path;
         }},
        {QStringLiteral("key"),
         [] {
             QPainterPath path = circle(96, 128, 30);
             path.addPath(lines({{126, 128}, {192, 128}, {192, 152}}));
             path.addPath(lines({{168, 128}, {168, 148}}));
             return path;
         }},
        {QStringLiteral("firewall"),
         [] {
             QPainterPath path = rect(64, 76, 128, 104, 6);
             path.addPath(lines({{64, 110}, {192, 110}}));
             path.addPath(lines({{64, 146}, {192, 146}}));
             path.addPath(lines({{112, 76}, {112, 110}}));
             path.addPath(lines({{152, 110}, {152, 146}}));
             path.addPath(lines({{104, 146}, {104, 180}}));
             return path;
         }},
        {QStringLiteral("lock"), lock},
        {QStringLiteral("shield"),
         [] {
             QPainterPath path = shield();
             path.addPath(lines({{106, 132}, {122, 148}, {152, 114}}));
             return path;
         }},
        {QStringLiteral("nosign"),
         [] {
             QPainterPath path = circle(128, 128, 64);
             path.addPath(lines({{83, 83}, {173, 173}}));
             return path;
         }},
        {QStringLiteral("filter"),
         [] {
             return lines({{64, 76}, {192, 76}, {144, 132}, {144, 184}, {112, 168}, {112, 132}, {64, 76}});
         }},
        {QStringLiteral("hourglass"),
         [] {
             QPainterPath path = lines({{80, 68}, {176, 68}});
             path.addPath(lines({{80, 188}, {176, 188}}));
             path.addPath(lines({{92, 68}, {164, 188}}));
             path.addPath(lines({{164, 68}, {92, 188}}));
             return path;
         }},
        {QStringLiteral("calendar"),
         [] {
             QPainterPath path = rect(64, 76, 128, 112);
             path.addPath(lines({{64, 108}, {192, 108}}));
             path.addPath(lines({{96, 64}, {96, 88}}));
             path.addPath(lines({{160, 64}, {160, 88}}));
             path.addPath(circle(128, 148, 6));
             return path;
         }},
        {QStringLiteral("contacts"),
         [] {
             QPainterPath path = rect(68, 64, 120, 128);
             path.addPath(person(128, 130, 0.7));
             return path;
         }},
        {QStringLiteral("mail"),
         [] {
             QPainterPath path = rect(60, 84, 136, 92);
             path.addPath(lines({{64, 90}, {128, 136}, {192, 90}}));
             return path;
         }},
        {QStringLiteral("person"), [] { return person(128, 120, 1); }},
        {QStringLiteral("store"),
         [] {
             QPainterPath path = lines({{72, 100}, {184, 100}, {172, 188}, {84, 188}, {72, 100}});
             path.addPath(arc(128, 100, 28, 0, 180));
             return path;
         }},
        {QStringLiteral("bookmark"),
         [] {
             return lines({{88, 64}, {168, 64}, {168, 192}, {128, 160}, {88, 192}, {88, 64}});
         }},
        {QStringLiteral("puzzle"),
         [] {
             QPainterPath path = rect(72, 96, 96, 96);
             path.addPath(circle(120, 80, 16));
             path.addPath(circle(184, 144, 16));
             return path;
         }},
        {QStringLiteral("grid"),
         [] {
             QPainterPath path;
             for (int row = 0; row < 2; ++row) {
                 for (int column = 0; column < 2; ++column)
                     path.addPath(rect(72 + column * 64, 72 + row * 64, 48, 48, 12));
             }
             return path;
         }},
        {QStringLiteral("printer"),
         [] {
             QPainterPath path = rect(60, 104, 136, 64);
             path.addPath(lines({{88, 104}, {88, 64}, {168, 64}, {168, 104}}));
             path.addPath(lines({{88, 150}, {88, 196}, {168, 196}, {168, 150}}));
             return path;
         }},
        {QStringLiteral("display"),
         [] {
             QPainterPath path = rect(56, 68, 144, 96);
             path.addPath(lines({{128, 164}, {128, 188}}));
             path.addPath(lines({{96, 192}, {160, 192}}));
             return path;
         }},
        {QStringLiteral("dock"),
         [] {
             QPainterPath path = rect(56, 148, 144, 40, 14);
             for (int slot = 0; slot < 3; ++slot)
                 path.addPath(rect(80 + slot * 36, 100, 24, 24, 6));
             return path;
         }},
        {QStringLiteral("disc"),
         [] {
             QPainterPath path = circle(128, 128, 64);
             path.addPath(circle(128, 128, 14));
             return path;
         }},
        {QStringLiteral("update"),
         [] {
             QPainterPath path = arc(128, 128, 60, 100, 290);
             path.addPath(lines({{104, 60}, {118, 70}, {108, 88}}));
             path.addPath(lines({{128, 96}, {128, 160}}));
             path.addPath(lines({{104, 136}, {128, 160}, {152, 136}}));
             return path;
         }},
        {QStringLiteral("clock"),
         [] {
             QPainterPath path = circle(128, 128, 64);
             path.addPath(lines({{128, 88}, {128, 128}, {156, 148}}));
             return path;
         }},
        {QStringLiteral("bell"),
         [] {
             QPainterPath path;
             path.moveTo(72, 168);
             path.lineTo(88, 148);
             path.lineTo(88, 112);
             path.cubicTo(88, 64, 168, 64, 168, 112);
             path.lineTo(168, 148);
             path.lineTo(184, 168);
             path.closeSubpath();
             path.addPath(arc(128, 176, 16, 180, 180));
             return path;
         }},
        {QStringLiteral("font"),
         [] {
             QPainterPath path = lines({{76, 192}, {128, 64}, {180, 192}});
             path.addPath(lines({{98, 144}, {158, 144}}));
             return path;
         }},
        {QStringLiteral("login"),
         [] {
             QPainterPath path = lines({{136, 64}, {184, 64}, {184, 192}, {136, 192}});
             path.addPath(lines({{64, 128}, {152, 128}}));
             path.addPath(lines({{124, 100}, {152, 128}, {124, 156}}));
             return path;
         }},
        {QStringLiteral("gear"), gear},
        {QStringLiteral("question"),
         [] {
             QPainterPath path = arc(128, 100, 36, 180, -230);
             path.lineTo(128, 152);
             path.addPath(circle(128, 188, 4));
             return path;
         }},
    };
    return made;
}

} // namespace

bool PayloadIconDesign::hasGlyph(const QString& glyph) {
    return glyphs().contains(glyph);
}

QColor PayloadIconDesign::familyColour(const QString& family) {
    static const QHash<QString, QColor> colours{
        {QStringLiteral("network"), QColor(0x2f, 0x6f, 0xd6)},
        {QStringLiteral("certificates"), QColor(0x16, 0x8a, 0x84)},
        {QStringLiteral("security"), QColor(0x2f, 0x8f, 0x4e)},
        {QStringLiteral("restrictions"), QColor(0xc8, 0x44, 0x3a)},
        {QStringLiteral("accounts"), QColor(0x7a, 0x52, 0xc7)},
        {QStringLiteral("apps"), QColor(0xd9, 0x82, 0x2b)},
        {QStringLiteral("devices"), QColor(0x4a, 0x62, 0x75)},
        {QStringLiteral("system"), QColor(0x6b, 0x6f, 0x76)},
    };
    return colours.value(family, QColor(0x8c, 0x7b, 0x62));
}

QList<IconLayer> PayloadIconDesign::layers(const QString& family, const QString& glyphName, bool dark) {
    const QColor colour = familyColour(family);
    QPainterPath background;
    background.addRoundedRect(tile, 48, 48);
    const QColor tileColour = dark ? colour.darker(170) : colour;
    const QColor glyphColour = dark ? colour.lighter(175) : QColor(Qt::white);
    return {
        {background, tileColour, QColor(), 0, 0},
        {glyph(glyphName), QColor(), glyphColour, glyphStroke, 0},
    };
}

QPainterPath PayloadIconDesign::glyph(const QString& name) {
    const auto found = glyphs().constFind(name);
    return found == glyphs().constEnd() ? QPainterPath() : (*found)();
}

} // namespace quorlin::icons
