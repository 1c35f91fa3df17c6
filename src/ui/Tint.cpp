#include "ui/Tint.h"

#include <QWidget>

namespace quorlin {

void Tint::setTextColour(QWidget& widget, const QColor& colour) {
    QPalette palette = widget.palette();
    palette.setColor(QPalette::WindowText, colour);
    palette.setColor(QPalette::Text, colour);
    widget.setPalette(palette);
}

void Tint::setTextRole(QWidget& widget, QPalette::ColorRole role) {
    setTextColour(widget, widget.palette().color(role));
}

} // namespace quorlin
