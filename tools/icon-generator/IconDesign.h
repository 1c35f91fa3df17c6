#pragma once

#include <QColor>
#include <QList>
#include <QPainterPath>

namespace quorlin::icons {

// One filled or stroked outline of the icon, in the coordinates of the design canvas.
struct IconLayer {
    QPainterPath path;
    QColor fill;   // invalid for none
    QColor stroke; // invalid for none
    qreal strokeWidth = 0;
    // Below this size in pixels the layer is left out: fine detail turns to grey noise.
    int smallestSize = 0;
};

// The application's mark: a page with a folded corner and a shield with a tick,
// for a profile that is checked and signed.
class IconDesign {
public:
    static constexpr qreal canvasSize = 256;

    static QList<IconLayer> layers();

private:
    static QPainterPath page();
    static QPainterPath fold();
    static QPainterPath textLines();
    static QPainterPath shield();
    static QPainterPath tick();
};

} // namespace quorlin::icons
