#pragma once

#include "plist/Expected.h"
#include "plist/Value.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>

namespace quorlin {

// Small stateless helpers shared across the layers: reading a plist of an
// expected shape, comparing dotted versions, joining terms in English.
class Utilities {
public:
    enum class GetDictionaryFromPlistBytesErrors { failurePlistRootIsNotDictionary, failurePlistInvalid };
    enum class GetArrayFromPlistBytesErrors { failurePlistRootIsNotArray, failurePlistInvalid };

    static Expected<plist::Dictionary, GetDictionaryFromPlistBytesErrors>
    getDictionaryFromPlistBytes(const QByteArray& bytes);
    static Expected<plist::Array, GetArrayFromPlistBytesErrors>
    getArrayFromPlistBytes(const QByteArray& bytes);

    // -1 when a is older than b, 1 when newer, 0 when equal. Parts that are
    // not decimal numbers are left out and the shorter list is padded with
    // zeros, so "1.5" equals "1.5.0", "1.10" is newer than "1.9", and "" is 0.
    static int compareVersions(const QString& a, const QString& b);

    // "a", "a and b", "a, b, and c" (or "or"), with the serial comma.
    static QString joinedTermSeries(const QStringList& terms, bool useOr);

    // folder/name.extension, or the first "name(n).extension" that does not exist yet.
    static QString uniqueFilePath(const QString& folder, const QString& baseName, const QString& extension);

    // The path that leads from the folder of `from` to `to`, joined by "/".
    static QString relativePath(const QString& from, const QString& to);

    // At most `count` bytes from the start of a file; nothing if it can't be read.
    static std::optional<QByteArray> readLeadingBytes(const QString& filePath, qint64 count);
};

} // namespace quorlin
