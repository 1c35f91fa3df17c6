#include "cli/CommandLineTool.h"

#include "cli/AppInspectCommand.h"
#include "cli/AppLookupCommand.h"
#include "cli/CheckCommand.h"
#include "cli/DecryptCommand.h"
#include "cli/DiffCommand.h"
#include "cli/DomainShowCommand.h"
#include "cli/DomainsCommand.h"
#include "cli/EncryptCommand.h"
#include "cli/ExitCode.h"
#include "cli/ExportPayloadCommand.h"
#include "cli/FormatCommand.h"
#include "cli/IdentityImportCommand.h"
#include "cli/IdentityListCommand.h"
#include "cli/ManifestsLintCommand.h"
#include "cli/ManifestsStandardizeCommand.h"
#include "cli/ManifestsStatusCommand.h"
#include "cli/ManifestsUpdateCommand.h"
#include "cli/NewCommand.h"
#include "cli/PlistConvertCommand.h"
#include "cli/PlistLintCommand.h"
#include "cli/ShowCommand.h"
#include "cli/SignCommand.h"
#include "cli/StandardOutputDevice.h"
#include "cli/UnsignCommand.h"
#include "cli/VerifyCommand.h"
#include "plist/ApplicationIdentity.h"

#include <QFile>

#include <algorithm>
#include <cstdio>
#include <unistd.h>

namespace quorlin::cli {

namespace {

bool isHelpOption(const QString& argument) {
    return argument == QStringLiteral("--help") || argument == QStringLiteral("-h");
}

// Help asked for anywhere before "--", which ends the options.
bool asksForHelp(const QStringList& arguments) {
    for (const QString& argument : arguments) {
        if (argument == QStringLiteral("--"))
            return false;
        if (isHelpOption(argument))
            return true;
    }
    return false;
}

qsizetype wordCount(const Command& command) {
    return command.name().count(u' ') + 1;
}

} // namespace

CommandLineTool::CommandLineTool() {
    // Every command: one line each.
    add(std::make_unique<DomainsCommand>());
    add(std::make_unique<ManifestsStandardizeCommand>());
    add(std::make_unique<ManifestsStatusCommand>());
    add(std::make_unique<ManifestsUpdateCommand>());
    add(std::make_unique<PlistConvertCommand>());
    add(std::make_unique<PlistLintCommand>());
    add(std::make_unique<DomainShowCommand>());
    add(std::make_unique<NewCommand>());
    add(std::make_unique<CheckCommand>());
    add(std::make_unique<FormatCommand>());
    add(std::make_unique<SignCommand>());
    add(std::make_unique<VerifyCommand>());
    add(std::make_unique<UnsignCommand>());
    add(std::make_unique<EncryptCommand>());
    add(std::make_unique<DecryptCommand>());
    add(std::make_unique<ExportPayloadCommand>());
    add(std::make_unique<IdentityImportCommand>());
    add(std::make_unique<IdentityListCommand>());
    add(std::make_unique<ManifestsLintCommand>());
    add(std::make_unique<DiffCommand>());
    add(std::make_unique<ShowCommand>());
    add(std::make_unique<AppInspectCommand>());
    add(std::make_unique<AppLookupCommand>());
}

QString CommandLineTool::programName() {
    return QStringLiteral("quorlin-profile");
}

int CommandLineTool::runWithStandardStreams(const QStringList& arguments) {
    StandardOutputDevice output(STDOUT_FILENO);
    QFile error;
    error.open(stderr, QIODevice::WriteOnly | QIODevice::Unbuffered);
    CommandStreams streams(output, error);
    const int status = CommandLineTool().run(arguments, streams);
    // Output that didn't arrive is a failure whatever the command made of it.
    if (const auto& failure = streams.outputFailure()) {
        streams.printError(programName() + QStringLiteral(": cannot write to standard output: ") + *failure);
        return ExitCode::usageOrInputError;
    }
    return status;
}

void CommandLineTool::add(std::unique_ptr<Command> command) {
    m_commands.push_back(std::move(command));
    std::sort(m_commands.begin(), m_commands.end(),
              [](const auto& a, const auto& b) { return a->name() < b->name(); });
}

int CommandLineTool::run(const QStringList& arguments, CommandStreams& streams) const {
    if (arguments.isEmpty()) {
        streams.printError(usage());
        return ExitCode::usageOrInputError;
    }
    const QString& first = arguments.first();
    if (isHelpOption(first)) {
        streams.print(usage());
        return ExitCode::success;
    }
    if (first == QStringLiteral("--version")) {
        streams.print(QStringLiteral("%1 (%2) %3")
                          .arg(programName(), ApplicationIdentity::displayName(),
                               ApplicationIdentity::shortVersionString()));
        return ExitCode::success;
    }
    const Command* command = find(arguments);
    if (!command)
        return unknownCommand(arguments, streams);

    const QStringList commandArguments = arguments.mid(wordCount(*command));
    if (asksForHelp(commandArguments)) {
        streams.print(command->help());
        return ExitCode::success;
    }
    return command->run(commandArguments, streams);
}

const Command* CommandLineTool::find(const QStringList& arguments) const {
    const Command* found = nullptr;
    for (const auto& command : m_commands) {
        const QStringList words = command->name().split(u' ');
        const bool matches = arguments.size() >= words.size() && arguments.first(words.size()) == words;
        if (matches && (!found || words.size() > wordCount(*found)))
            found = command.get();
    }
    return found;
}

QString CommandLineTool::usage() const {
    qsizetype width = 0;
    for (const auto& command : m_commands)
        width = std::max(width, command->name().size());
    QString commands;
    for (const auto& command : m_commands)
        commands +=
            QStringLiteral("  %1  %2\n").arg(command->name().leftJustified(width), command->summary());
    return QStringLiteral("Usage: %1 COMMAND [ARGUMENTS...]\n"
                          "\n"
                          "Works with property lists and configuration profiles from the command line.\n"
                          "\n"
                          "Commands:\n"
                          "%2"
                          "\n"
                          "Options:\n"
                          "  -h, --help  Show this help; after a command, show that command's help\n"
                          "  --version   Show the version\n"
                          "\n"
                          "Exit status: 0 when all is well, 1 when a check found problems,\n"
                          "2 for a usage error or an input that can't be read.")
        .arg(programName(), commands);
}

int CommandLineTool::unknownCommand(const QStringList& arguments, CommandStreams& streams) const {
    // A group word alone ("plist") is not a command; say which ones it has.
    const QString group = arguments.first() + u' ';
    QStringList inGroup;
    for (const auto& command : m_commands) {
        if (command->name().startsWith(group))
            inGroup << command->name();
    }
    if (!inGroup.isEmpty() && arguments.size() < 2)
        streams.printError(QStringLiteral("%1: '%2' needs a command: %3")
                               .arg(programName(), arguments.first(), inGroup.join(QStringLiteral(", "))));
    else if (!inGroup.isEmpty())
        streams.printError(
            QStringLiteral("%1: unknown command '%2 %3'; commands: %4")
                .arg(programName(), arguments[0], arguments[1], inGroup.join(QStringLiteral(", "))));
    else if (arguments.first().startsWith(u'-'))
        streams.printError(QStringLiteral("%1: unknown option '%2'").arg(programName(), arguments.first()));
    else
        streams.printError(QStringLiteral("%1: unknown command '%2'").arg(programName(), arguments.first()));
    streams.printError(QStringLiteral("Run '%1 --help' for the list of commands.").arg(programName()));
    return ExitCode::usageOrInputError;
}

} // namespace quorlin::cli
