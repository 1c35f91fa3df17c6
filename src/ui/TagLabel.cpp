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

} // namespace quorlin
