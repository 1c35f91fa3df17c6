#pragma once

#include <QString>

namespace quorlin {

// The closed set of "pfm_quorlin_type_adapter" values: how a stored shape
// is edited as one string.
struct TypeAdapter {
    static inline const QString dataToHexString = QStringLiteral("data-to-hex-string");
    static inline const QString stringsArrayToCommaDelimitedString =
        QStringLiteral("strings-array-to-comma-delimited-string");
    static inline const QString oidAndValueArraysToX500Name =
        QStringLiteral("oid-and-value-arrays-to-x500-name");
};

} // namespace quorlin
