#pragma once

#include <QString>
#include <QStringList>

namespace quorlin::cli {

// The profile files that the operands of a command name: a file as given, a
// folder as every ".mobileconfig" file below it, in path order.
class ProfileFiles {
public:
    struct Expansion {
        QStringList files;
        // Folders that held no profile file, to be reported.
        QStringList emptyFolders;
    };

    static Expansion expand(const QStringList& operands);
};

} // namespace quorlin::cli
