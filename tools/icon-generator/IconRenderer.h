#pragma once

#include "IconDesign.h"

#include <QImage>
#include <QList>

namespace quorlin::icons {

// Paints the layers into a square bitmap of one of the theme's sizes.
class IconRenderer {
public:
    static QImage render(const QList<IconLayer>& layers, int size);

private:
    static qreal strokeWidthAt(const IconLayer& layer, qreal scale);
};

} // namespace quorlin::icons
