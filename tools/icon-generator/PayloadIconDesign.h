#pragma once

#include "IconDesign.h"

#include <QString>

namespace quorlin::icons {

// The side-bar's payload icons: a rounded tile in the colour of the family
// with a glyph of the payload on it, on the application icon's canvas. The
// dark variant sinks the tile and tints the glyph, so it neither glares on
// a dark side-bar nor vanishes into it.
class PayloadIconDesign {
public:
    static QList<IconLayer> layers(const QString& family, const QString& glyph, bool dark);
    // Whether the design knows the glyph; the generator refuses a table with others.
    static bool hasGlyph(const QString& glyph);

private:
    static QColor familyColour(const QString& family);
    static QPainterPath glyph(const QString& name);
};

} // namespace quorlin::icons
