#include "cli/Command.h"

#include "cli/CommandLineTool.h"
#include "cli/ExitCode.h"

namespace quorlin::cli {

int Command::usageError(CommandStreams& streams, const QString& message) const {
    const QString invocation = CommandLineTool::programName() + u' ' + name();
    streams.printError(invocation + QStringLiteral(": ") + message);
    streams.printError(QStringLiteral("Run '%1 --help' for its usage.").arg(invocation));
    return ExitCode::usageOrInputError;
}

} // namespace quorlin::cli
