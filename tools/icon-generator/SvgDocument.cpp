#include "SvgDocument.h"

#include <QStringList>

namespace quorlin::icons {

QString SvgDocument::write(const QList<IconLayer>& layers, const QString& title) {
    const QString size = number(IconDesign::canvasSize);
    QString svg = QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                 "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%1\" height=\"%1\" "
                                 "viewBox=\"0 0 %1 %1\">\n"
                                 "  <title>%2</title>\n")
                      .arg(size, title);
    for (const IconLayer& layer : layers)
        svg += QStringLiteral("  ") + element(layer) + u'\n';
    return svg + QStringLiteral("</svg>\n");
}

QString SvgDocument::element(const IconLayer& layer) {
    QString attributes =
        QStringLiteral("fill=\"%1\"").arg(layer.fill.isValid() ? layer.fill.name() : QStringLiteral("none"));
    if (layer.stroke.isValid())
        attributes += QStringLiteral(" stroke=\"%1\" stroke-width=\"%2\" stroke-linecap=\"round\" "
                                     "stroke-linejoin=\"round\"")
                          .arg(layer.stroke.name(), number(layer.strokeWidth));
    return QStringLiteral("<path %1 d=\"%2\"/>").arg(attributes, pathData(layer.path));
}

// QPainterPath keeps arcs and quadratic pieces as cubic curves, so three
// element kinds cover every outline. It closes a subpath with a line back to
// its start; an explicit "Z" makes the stroke join there instead of capping.
QString SvgDocument::pathData(const QPainterPath& path) {
    QStringList commands;
    QPointF subpathStart;
    for (int index = 0; index < path.elementCount(); ++index) {
        const QPainterPath::Element element = path.elementAt(index);
        const QString point = number(element.x) + u' ' + number(element.y);
        switch (element.type) {
        case QPainterPath::MoveToElement:
            subpathStart = element;
            commands << QStringLiteral("M ") + point;
            break;
        case QPainterPath::LineToElement:
            commands << QStringLiteral("L ") + point;
            break;
        case QPainterPath::CurveToElement:
            commands << QStringLiteral("C ") + point;
            break;
        case QPainterPath::CurveToDataElement:
            commands << point;
            break;
        }
        if (element.type != QPainterPath::CurveToElement && endsSubpath(path, index) &&
            QPointF(element) == subpathStart && index > 0)
            commands << QStringLiteral("Z");
    }
    return commands.join(u' ');
}

bool SvgDocument::endsSubpath(const QPainterPath& path, int index) {
    return index + 1 == path.elementCount() || path.elementAt(index + 1).type == QPainterPath::MoveToElement;
}

// Two decimals are far below a pixel at any size, and keep the file diffable.
QString SvgDocument::number(qreal value) {
    QString text = QString::number(value, 'f', 2);
    while (text.endsWith(u'0'))
        text.chop(1);
    if (text.endsWith(u'.'))
        text.chop(1);
    return text == QStringLiteral("-0") ? QStringLiteral("0") : text;
}

} // namespace quorlin::icons
