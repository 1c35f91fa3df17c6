#pragma once

#include "plist/Expected.h"
#include "plist/PlistReader.h"

#include <QByteArray>
#include <QString>

namespace quorlin::cli {

// Reading the files named on the command line, with messages that name the
// file and the reason.
class InputFile {
public:
    struct Error {
        // A file that can't be opened is a different failure from one that
        // opens and is not a property list.
        enum class Kind { unreadable, invalid };
        Kind kind;
        QString message; // "PATH: cannot open: REASON", "PATH: REASON (line N)"
    };

    // "-" reads standard input. Files too large, devices and named pipes
    // are refused as unreadable.
    static Expected<QByteArray, Error> read(const QString& path);
    static Expected<plist::ReadResult, Error> readPlist(const QString& path);
};

} // namespace quorlin::cli
