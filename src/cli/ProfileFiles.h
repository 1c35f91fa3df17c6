#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace quorlin::cli {

// The profile files that the operands of a command name: a file as given, a
// folder as every ".mobileconfig" file below it, in path order.
class ProfileFiles {
public:
    // What makes a folder's expansion incomplete: a folder with no profile,
    // a subfolder that can't be read, a name that can't be decoded (and so
    // can't be opened by it).
    struct Problem {
        QString path;
        QString message; // "PATH: REASON"
    };
    struct Expansion {
        QStringList files;
        QList<Problem> problems;
    };

    static Expansion expand(const QStringList& operands);
};

} // namespace quorlin::cli
