#include "IconRenderer.h"

#include <QPainter>
#include <QPen>

#include <algorithm>

namespace quorlin::icons {

QImage IconRenderer::render(const QList<IconLayer>& layers, int size) {
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    const qreal scale = size / IconDesign::canvasSize;

    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(scale, scale);
    for (const IconLayer& layer : layers) {
        if (size < layer.smallestSize)
            continue;
        painter.setBrush(layer.fill.isValid() ? QBrush(layer.fill) : QBrush(Qt::NoBrush));
        if (layer.stroke.isValid())
            painter.setPen(
                QPen(layer.stroke, strokeWidthAt(layer, scale), Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        else
            painter.setPen(Qt::NoPen);
        painter.drawPath(layer.path);
    }
    painter.end();
    return image.convertToFormat(QImage::Format_ARGB32);
}

// A stroke thinner than one pixel smears into a faint halo at the small sizes.
qreal IconRenderer::strokeWidthAt(const IconLayer& layer, qreal scale) {
    return std::max(layer.strokeWidth, 1.0 / scale);
}

} // namespace quorlin::icons
