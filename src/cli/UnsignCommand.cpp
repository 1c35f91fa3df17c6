#include "cli/UnsignCommand.h"

#include "cli/CommonOptions.h"
#include "cli/ExitCode.h"
#include "cli/ParsedArguments.h"
#include "cli/ProfileOpener.h"

namespace quorlin::cli {

QString UnsignCommand::summary() const {
    return QStringLiteral("Take the profile out of a signed profile");
}

QString UnsignCommand::help() const {
    return QStringLiteral("Usage: quorlin-profile unsign FILE -o OUT [--manifests DIR]\n"
                          "\n"
                          "Writes the property list that the signed profile FILE holds to OUT, byte for\n"
                          "byte as it was signed. FILE must open as a profile, as in the editor; the\n"
                          "signature is not judged (see \"verify\").\n"
                          "\n"
                          "  -o OUT           where to write the unsigned profile (required)\n"
                          "  --manifests DIR  take the domains from the manifests in DIR\n"
                          "\n"
                          "Exit status: 0 when written, 2 for a usage error, a file that can't be opened\n"
                          "as a profile or isn't signed, or an output that can't be written.");
}

int UnsignCommand::run(const QStringList& arguments, CommandStreams& streams) const {
    const auto parsed = ParsedArguments::parse(arguments, {kOutputOption, kManifestsOption});
    if (!parsed)
        return usageError(streams, parsed.error());
    if (parsed->operands().size() != 1)
        return usageError(streams, QStringLiteral("give exactly one file"));
    const auto output = parsed->value(kOutputOption);
    if (!output)
        return usageError(streams, QStringLiteral("no output file given (-o OUT)"));

    const QString input = parsed->operands().first();
    const auto context = ProfileContext::make(parsed->value(kManifestsOption));
    if (!context)
        return commandError(streams, context.error());
    const auto opened = ProfileOpener(*context).open(input);
    if (!opened)
        return inputError(streams, opened.error().message);
    if (!opened->isSigned())
        return inputError(streams, input + QStringLiteral(": not signed"));
    return writeOutputFile(streams, *output, opened->content);
}

} // namespace quorlin::cli
