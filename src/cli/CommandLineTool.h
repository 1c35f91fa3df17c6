#pragma once

#include "cli/Command.h"
#include "cli/CommandStreams.h"

#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

namespace quorlin::cli {

// quorlin-profile: finds the command named by the first words of the
// command line and runs it. Global options: --help/-h and --version; a
// command's own help with --help after its name.
class CommandLineTool {
public:
    // The tool with every built-in command.
    CommandLineTool();

    static QString programName();
    // Runs on the process's standard output and error.
    static int runWithStandardStreams(const QStringList& arguments);

    void add(std::unique_ptr<Command> command);
    // Arguments without the program name; returns an ExitCode.
    int run(const QStringList& arguments, CommandStreams& streams) const;

private:
    // The command whose name is the longest run of leading words, or null.
    const Command* find(const QStringList& arguments) const;
    QString usage() const;
    int unknownCommand(const QStringList& arguments, CommandStreams& streams) const;

    std::vector<std::unique_ptr<Command>> m_commands;
};

} // namespace quorlin::cli
