#pragma once

#include "fields/TextRange.h"

#include <QList>
#include <QString>

namespace quorlin {

// Rich text of a row's label with the searched term's ranges set off, as
// the logic found them; escaped so that a title can't inject markup.
class HighlightedText {
public:
    static QString html(const QString& text, const QList<TextRange>& highlights, bool dimmed = false);
};

} // namespace quorlin
