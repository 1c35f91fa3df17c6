#pragma once

#include "fields/PlatformTag.h"

#include <QLabel>

namespace quorlin {

// The small rounded label of a row's or section's details: a platform,
// "Required" or "Supervised only". Its size follows the font.
class TagLabel : public QLabel {
    Q_OBJECT

public:
    explicit TagLabel(const QString& html, QWidget* parent = nullptr);
    static TagLabel* platform(const PlatformTag& tag, QWidget* parent = nullptr);
    // A field's platforms on one quiet line, "iOS · macOS", each tooltip on a line of its own.
    static QLabel* platformLine(const QList<PlatformTag>& tags, QWidget* parent = nullptr);
};

} // namespace quorlin
