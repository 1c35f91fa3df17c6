#pragma once

#include <QList>
#include <QString>

#include <optional>

namespace quorlin {

// A run of characters in a shown text, in UTF-16 units as QString counts them.
struct TextRange {
    qsizetype start = 0;
    qsizetype length = 0;
    friend bool operator==(TextRange, TextRange) = default;

    // Every occurrence of the term, left to right, each search starting
    // behind the last match, case-insensitive. A term shorter than two
    // characters matches nothing: one letter would light up every row.
    static QList<TextRange> termMatches(const QString& text, const std::optional<QString>& term);
};

} // namespace quorlin
