#include "cli/CheckCommand.h"

#include "cli/CheckTargets.h"
#include "cli/CommandLineTool.h"
#include "cli/CommonOptions.h"
#include "cli/ExitCode.h"
#include "cli/ParsedArguments.h"
#include "cli/ProfileFiles.h"
#include "cli/ProfileFindings.h"
#include "cli/ProfileOpener.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace quorlin::cli {

namespace {

const QString kPlatformOption = QStringLiteral("--platform");
const QString kMinimumOption = QStringLiteral("--os-min");
const QString kMaximumOption = QStringLiteral("--os-max");

struct Report {
    qsizetype checked = 0;
    QList<ProfileFindings::Finding> findings;
    QJsonArray errors;
};

} // namespace

QString CheckCommand::summary() const {
    return QStringLiteral("Check profiles for what the editor marks as wrong");
}

QString CheckCommand::help() const {
    return QStringLiteral(
               "Usage: quorlin-profile check FILE... [--platform NAME]... [--os-min VERSION]\n"
               "                                     [--os-max VERSION] [--manifests DIR] [--json]\n"
               "\n"
               "Opens each profile as the editor does, plain or signed, and reports every\n"
               "field that the editor would mark, in its words: values that break their\n"
               "manifest's rules and, with targets, keys that don't exist on them. Also\n"
               "reported: a PayloadUUID or PayloadIdentifier that repeats an earlier\n"
               "payload's, payloads that the editor would drop as malformed, and signatures\n"
               "that are broken. A FILE that is a folder stands for every \".mobileconfig\"\n"
               "file below it.\n"
               "\n"
               "Each finding is one line: the file, the payload (type, display name and\n"
               "UUID), the key path (names joined with \".\") and the message. A file with\n"
               "nothing found prints \"FILE: OK\". Files that can't be opened (with the\n"
               "parser's reason and line for one that isn't a property list), and profile\n"
               "service or enrollment payloads, are reported on standard error.\n"
               "\n"
               "Like a file opened in the editor, a check has no targets unless given:\n"
               "  --platform NAME  check against this platform: %1;\n"
               "                   may be given again, or as a comma list\n"
               "  --os-min VERSION the lowest OS version aimed at, on every platform given\n"
               "  --os-max VERSION the highest OS version aimed at, on every platform given;\n"
               "                   a bound left out is the one the editor's validation\n"
               "                   settings hold for the platform, as for a new profile there;\n"
               "                   with no minimum there, no key is reported for being\n"
               "                   introduced after it; with no maximum, the highest version\n"
               "                   there is\n"
               "  --manifests DIR  take the domains from the manifests in DIR\n"
               "  --json           print one JSON object instead: \"checked\" (the number of\n"
               "                   files opened), \"findings\" (objects with file, payloadType,\n"
               "                   payloadDisplayName, payloadUUID, keyPath and message) and\n"
               "                   \"errors\" (objects with file and message)\n"
               "\n"
               "Exit status: 0 when nothing was found, 1 when something was, 2 for a usage\n"
               "error or a file that can't be opened as a profile (the others are still\n"
               "checked).")
        .arg(CheckTargets::platformNames());
}

int CheckCommand::run(const QStringList& arguments, CommandStreams& streams) const {
    const auto parsed = ParsedArguments::parse(
        arguments, ParsedArguments::Options({kMinimumOption, kMaximumOption, kManifestsOption}, {kJsonFlag},
                                            {kPlatformOption}));
    if (!parsed)
        return usageError(streams, parsed.error());
    if (parsed->operands().isEmpty())
        return usageError(streams, QStringLiteral("no file given"));
    const auto targets = CheckTargets::make(parsed->values(kPlatformOption), parsed->value(kMinimumOption),
                                            parsed->value(kMaximumOption));
    if (!targets)
        return usageError(streams, targets.error());
    const auto context = ProfileContext::make(parsed->value(kManifestsOption));
    if (!context)
        return commandError(streams, context.error());

    return check({*context, (*targets)->settings(), parsed->operands(), parsed->hasFlag(kJsonFlag)}, streams);
}

int CheckCommand::check(const Request& request, CommandStreams& streams) {
    Report report;
    const auto reportError = [&](const QString& file, const QString& message) {
        streams.printError(message);
        report.errors.append(
            QJsonObject{{QStringLiteral("file"), file}, {QStringLiteral("message"), message}});
    };
    const ProfileFiles::Expansion expansion = ProfileFiles::expand(request.operands);
    for (const auto& problem : expansion.problems)
        reportError(problem.path, problem.message);

    const ProfileOpener opener(request.context);
    for (const QString& file : expansion.files) {
        const auto opened = opener.open(file);
        if (!opened) {
            reportError(file, opened.error().message);
            continue;
        }
        ++report.checked;
        const auto findings = ProfileFindings::of(*opened, request.targets);
        if (!request.asJson) {
            if (findings.isEmpty())
                streams.print(file + QStringLiteral(": OK"));
            for (const auto& finding : findings)
                streams.print(finding.text());
        }
        report.findings.append(findings);
    }

    if (request.asJson) {
        QJsonArray findings;
        for (const auto& finding : report.findings)
            findings.append(finding.json());
        streams.writeOutput(QJsonDocument(QJsonObject{{QStringLiteral("checked"), qint64(report.checked)},
                                                      {QStringLiteral("findings"), findings},
                                                      {QStringLiteral("errors"), report.errors}})
                                .toJson(QJsonDocument::Indented));
    }
    if (!report.errors.isEmpty())
        return ExitCode::usageOrInputError;
    return report.findings.isEmpty() ? ExitCode::success : ExitCode::findings;
}

} // namespace quorlin::cli
