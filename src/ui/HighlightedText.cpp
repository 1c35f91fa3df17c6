#include "ui/HighlightedText.h"

#include <QApplication>
#include <QPalette>

#include <algorithm>

namespace quorlin {

namespace {

QString escaped(const QString& text) {
    return text.toHtmlEscaped().replace(QLatin1Char('\n'), QStringLiteral("<br>"));
}

} // namespace

QString HighlightedText::html(const QString& text, const QList<TextRange>& highlights, bool dimmed) {
    QList<TextRange> ranges = highlights;
    std::sort(ranges.begin(), ranges.end(), [](TextRange a, TextRange b) { return a.start < b.start; });
    QString html;
    qsizetype position = 0;
    for (const TextRange& range : ranges) {
        if (range.start < position || range.start + range.length > text.size())
            continue;
        html += escaped(text.mid(position, range.start - position));
        html += QStringLiteral("<span style=\"background-color:#ffe45c; color:#000000;\">") +
                escaped(text.mid(range.start, range.length)) + QStringLiteral("</span>");
        position = range.start + range.length;
    }
    html += escaped(text.mid(position));
    if (dimmed) {
        const QColor colour = QApplication::palette().color(QPalette::Disabled, QPalette::Text);
        html = QStringLiteral("<span style=\"color:%1;\">%2</span>").arg(colour.name(), html);
    }
    return html;
}

} // namespace quorlin
