#pragma once

#include <QImage>

namespace quorlin {

// A decoded domain icon. A template image is drawn in the colour of its
// surroundings rather than its own, so the flag travels with the pixels.
struct DomainIcon {
    QImage image;
    bool isTemplate = false;

    bool isNull() const { return image.isNull(); }
};

} // namespace quorlin
