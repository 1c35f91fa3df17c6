#include "cli/ShowCommand.h"

#include "cli/CommonOptions.h"
#include "cli/ExitCode.h"
#include "cli/ParsedArguments.h"
#include "cli/ProfileOpener.h"
#include "cli/ProfileRoot.h"
#include "documents/SignatureComparison.h"
#include "model/ProfileDifferenceText.h"
#include "model/ProfileTextForm.h"

namespace quorlin::cli {

QString ShowCommand::summary() const {
    return QStringLiteral("Print a profile as readable text, section by section");
}

QString ShowCommand::help() const {
    return QStringLiteral("Usage: quorlin-profile show FILE [--manifests DIR]\n"
                          "\n"
                          "Prints the profile FILE, plain or signed, as text that stays the same for\n"
                          "profiles that are the same in effect: who signed it, then one section per\n"
                          "payload (the profile's own settings first, then the payloads by title), one\n"
                          "line per value with its titles and key path, keys in their manifest's order.\n"
                          "Payload UUIDs are left out (in an identifier they read \"<PayloadUUID>\") and\n"
                          "data is shown by size and digest.\n"
                          "\n"
                          "With git, let it stand in for the file in diffs of profiles:\n"
                          "  git config diff.mobileconfig.textconv 'quorlin-profile show'\n"
                          "  echo '*.mobileconfig diff=mobileconfig' >> .gitattributes\n"
                          "\n"
                          "  --manifests DIR  take the domains from the manifests in DIR\n"
                          "\n"
                          "Exit status: 0 when shown, 2 for a usage error or a file that can't be opened\n"
                          "as a profile.");
}

int ShowCommand::run(const QStringList& arguments, CommandStreams& streams) const {
    const auto parsed = ParsedArguments::parse(arguments, ParsedArguments::Options({kManifestsOption}));
    if (!parsed)
        return usageError(streams, parsed.error());
    if (parsed->operands().size() != 1)
        return usageError(streams, QStringLiteral("give exactly one file"));

    const auto context = ProfileContext::make(parsed->value(kManifestsOption));
    if (!context)
        return commandError(streams, context.error());
    const auto opened = ProfileOpener(*context).open(parsed->operands().first());
    if (!opened)
        return inputError(streams, opened.error().message);
    // A signature set against none gives the signers' names.
    if (const auto signature = SignatureComparison::compare(std::nullopt, opened->signature))
        streams.print(QStringLiteral("Signature: ") +
                      ProfileDifferenceText::signerWords(signature->newValue) + u'\n');
    streams.writeOutput(ProfileTextForm(context->domains).render(ProfileRoot::of(*opened)).toUtf8());
    return ExitCode::success;
}

} // namespace quorlin::cli
