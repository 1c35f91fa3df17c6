#pragma once

#include "cli/CommandStreams.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace quorlin::cli {

// One command of quorlin-profile. The tool finds it by its name, prints its
// summary in the list of commands and its help on "--help", and otherwise
// hands it the arguments that follow its name.
class Command {
public:
    virtual ~Command() = default;

    // One or more words, e.g. "plist lint".
    virtual QString name() const = 0;
    // One line for the list of commands.
    virtual QString summary() const = 0;
    // The full help, from the usage line on.
    virtual QString help() const = 0;
    // Returns an ExitCode.
    virtual int run(const QStringList& arguments, CommandStreams& streams) const = 0;

protected:
    // Reports a mistake in the command line and answers the exit status for it.
    int usageError(CommandStreams& streams, const QString& message) const;
    // Reports an input that can't be read or an output that can't be
    // written, the message naming the file, and answers the exit status.
    int inputError(CommandStreams& streams, const QString& message) const;
    // The same for a failure of the command as a whole, named after it.
    int commandError(CommandStreams& streams, const QString& reason) const;
    // "-" for an input or an output: standard input or standard output.
    static inline const QString standardStream = QStringLiteral("-");

    // Writes the bytes to the file whole or not at all, or to standard
    // output for "-"; the exit status.
    int writeOutputFile(CommandStreams& streams, const QString& path, const QByteArray& bytes) const;
};

} // namespace quorlin::cli
