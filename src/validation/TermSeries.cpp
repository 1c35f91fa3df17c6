#include "validation/TermSeries.h"

namespace quorlin {

QString TermSeries::joined(const QStringList& terms, const QString& connector) {
    QString series;
    for (qsizetype index = 0; index < terms.size(); ++index) {
        const bool last = index == terms.size() - 1;
        if (index == 0)
            series = terms[index];
        else if (!last)
            series += QStringLiteral(", ") + terms[index];
        else if (terms.size() == 2)
            series += QLatin1Char(' ') + connector + QLatin1Char(' ') + terms[index];
        else
            series += QStringLiteral(", ") + connector + QLatin1Char(' ') + terms[index];
    }
    return series;
}

} // namespace quorlin
