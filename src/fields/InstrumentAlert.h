#pragma once

#include <QString>

namespace quorlin {

// Why a file-based instrument refused a file or couldn't write one, in the
// words the window's alert shows.
struct InstrumentAlert {
    QString title;
    QString informativeText;
    friend bool operator==(const InstrumentAlert&, const InstrumentAlert&) = default;
};

} // namespace quorlin
