#include "ui/TagLabel.h"

namespace quorlin {

TagLabel::TagLabel(const QString& html, QWidget* parent)
    : QLabel(parent) {
    setTextFormat(Qt::RichText);
    setText(html);
    QFont small = font();
    small.setPointSizeF(small.pointSizeF() * 0.85);
    setFont(small);
    const int padding = fontMetrics().averageCharWidth() / 2 + 1;
    setContentsMargins(padding, 0, padding, 0);
    setFrameShape(QFrame::StyledPanel);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

TagLabel* TagLabel::platform(const PlatformTag& tag, QWidget* parent) {
    auto* label = new TagLabel(tag.text().toHtmlEscaped(), parent);
    label->setObjectName(QStringLiteral("platformTag"));
    if (const auto toolTip = tag.toolTip())
        label->setToolTip(*toolTip);
    return label;
}

QLabel* TagLabel::platformLine(const QList<PlatformTag>& tags, QWidget* parent) {
    QStringList names;
    QStringList toolTips;
    for (const PlatformTag& tag : tags) {
        names << tag.text();
        if (const auto toolTip = tag.toolTip())
            toolTips << *toolTip;
    }
    auto* label = new QLabel(names.join(QStringLiteral(" \u00B7 ")), parent);
    label->setObjectName(QStringLiteral("platformTags"));
    label->setTextFormat(Qt::PlainText);
    label->setToolTip(toolTips.join(QLatin1Char('\n')));
    label->setAccessibleName(QStringLiteral("Platforms: %1").arg(names.join(QStringLiteral(", "))));
    QFont small = label->font();
    small.setPointSizeF(small.pointSizeF() * 0.85);
    label->setFont(small);
    label->setForegroundRole(QPalette::PlaceholderText);
    return label;
}

} // namespace quorlin
