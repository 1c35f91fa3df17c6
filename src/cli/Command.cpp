#include "cli/Command.h"

#include "cli/CommandLineTool.h"
#include "cli/ExitCode.h"
#include "cli/OutputFile.h"

namespace quorlin::cli {

int Command::usageError(CommandStreams& streams, const QString& message) const {
    const QString invocation = CommandLineTool::programName() + u' ' + name();
    streams.printError(invocation + QStringLiteral(": ") + message);
    streams.printError(QStringLiteral("Run '%1 --help' for its usage.").arg(invocation));
    return ExitCode::usageOrInputError;
}

int Command::inputError(CommandStreams& streams, const QString& message) const {
    streams.printError(message);
    return ExitCode::usageOrInputError;
}

int Command::commandError(CommandStreams& streams, const QString& reason) const {
    return inputError(streams,
                      QStringLiteral("%1 %2: %3").arg(CommandLineTool::programName(), name(), reason));
}

int Command::writeOutputFile(CommandStreams& streams, const QString& path, const QByteArray& bytes) const {
    // A failure of standard output is reported once the command is done.
    if (path == standardStream) {
        streams.writeOutput(bytes);
        return ExitCode::success;
    }
    if (const auto written = OutputFile::write(path, bytes); !written)
        return inputError(streams, path + QStringLiteral(": cannot write: ") + written.error());
    return ExitCode::success;
}

} // namespace quorlin::cli
