#pragma once

#include <QColor>
#include <QPalette>

class QWidget;

namespace quorlin {

// Colours of small marks (errors, badges, the write-out dot) set through
// the palette: a style sheet per row would cost more than the row.
class Tint {
public:
    static QColor errorColour() { return QColor(0xd0, 0x30, 0x2b); }
    static void setTextColour(QWidget& widget, const QColor& colour);
    static void setTextRole(QWidget& widget, QPalette::ColorRole role);
};

} // namespace quorlin
