#pragma once

#include <QString>

namespace quorlin {

// Why "pfmx_supported_oses" could not be decoded: the first value that was
// missing or of the wrong type, and where it stands.
struct PFMXDecodingError {
    QString codingPath; // keys from the decoded dictionary down, joined by "."
    QString reason;
};

} // namespace quorlin
