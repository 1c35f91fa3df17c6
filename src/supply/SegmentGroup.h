#pragma once

#include <QString>
#include <QStringList>

namespace quorlin {

// One segment of a segmented control in a third-party manifest: the program
// shows it as a group of keys instead of the control.
struct SegmentGroup {
    QString groupName;
    // "pfm_name" of the keys the group shows.
    QStringList groupKeys;
    // "pfm_name" of the key that carried the segments, or "".
    QString originalControlName;

    friend bool operator==(const SegmentGroup&, const SegmentGroup&) = default;
};

} // namespace quorlin
