#pragma once

#include "IconDesign.h"

#include <QList>
#include <QString>

namespace quorlin::icons {

// Writes the layers as a scalable SVG icon with the design canvas as its view box.
class SvgDocument {
public:
    static QString write(const QList<IconLayer>& layers,
                         const QString& title = QStringLiteral("Quorlin Profile Editor"));

private:
    static QString element(const IconLayer& layer);
    static QString pathData(const QPainterPath& path);
    static bool endsSubpath(const QPainterPath& path, int index);
    static QString number(qreal value);
};

} // namespace quorlin::icons
