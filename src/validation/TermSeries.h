#pragma once

#include <QString>
#include <QStringList>

namespace quorlin {

// A list of terms joined into one phrase with a serial comma: "a", "a or b",
// "a, b, or c". An empty list gives an empty string.
class TermSeries {
public:
    static QString joined(const QStringList& terms, const QString& connector);
};

} // namespace quorlin
