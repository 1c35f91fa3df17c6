#include "fields/TextRange.h"

namespace quorlin {

QList<TextRange> TextRange::termMatches(const QString& text, const std::optional<QString>& term) {
    if (!term || term->size() < 2)
        return {};
    QList<TextRange> matches;
    qsizetype from = 0;
    while (from <= text.size()) {
        const qsizetype found = text.indexOf(*term, from, Qt::CaseInsensitive);
        if (found < 0)
            break;
        matches.append({found, term->size()});
        from = found + term->size();
    }
    return matches;
}

} // namespace quorlin
