#include "cli/PlistLintCommand.h"

#include "cli/ExitCode.h"
#include "cli/InputFile.h"
#include "cli/ParsedArguments.h"

namespace quorlin::cli {

QString PlistLintCommand::summary() const {
    return QStringLiteral("Check that files are readable property lists");
}

QString PlistLintCommand::help() const {
    return QStringLiteral("Usage: quorlin-profile plist lint FILE...\n"
                          "\n"
                          "Reads each file as a property list (XML, binary or OpenStep) and prints\n"
                          "\"FILE: OK\" for a good one; for a bad one it prints the reason and where\n"
                          "it was found, on standard error.\n"
                          "\n"
                          "Exit status: 0 when all files are good, 1 when one is not a property list,\n"
                          "2 when one can't be opened (the others are still checked).");
}

int PlistLintCommand::run(const QStringList& arguments, CommandStreams& streams) const {
    const auto parsed = ParsedArguments::parse(arguments, {});
    if (!parsed)
        return usageError(streams, parsed.error());
    if (parsed->operands().isEmpty())
        return usageError(streams, QStringLiteral("no file given"));

    bool anyInvalid = false;
    bool anyUnreadable = false;
    for (const QString& path : parsed->operands()) {
        const auto result = InputFile::readPlist(path);
        if (result) {
            streams.print(path + QStringLiteral(": OK"));
            continue;
        }
        streams.printError(result.error().message);
        (result.error().kind == InputFile::Error::Kind::unreadable ? anyUnreadable : anyInvalid) = true;
    }
    if (anyUnreadable)
        return ExitCode::usageOrInputError;
    return anyInvalid ? ExitCode::findings : ExitCode::success;
}

} // namespace quorlin::cli
