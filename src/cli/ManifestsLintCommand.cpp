#include "cli/ManifestsLintCommand.h"

#include "cli/CommonOptions.h"
#include "cli/ExitCode.h"
#include "cli/InputFile.h"
#include "cli/ParsedArguments.h"
#include "supply/ManifestLinter.h"

#include <QDirIterator>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace quorlin::cli {

namespace {

// A folder stands for every manifest below it, in a stable order.
QStringList manifestFiles(const QString& path) {
    if (!QFileInfo(path).isDir())
        return {path};
    QStringList files;
    QDirIterator it(path, {QStringLiteral("*.plist")}, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext())
        files.append(it.next());
    files.sort();
    return files;
}

struct Outcome {
    QJsonArray findings;
    QJsonArray unreadable;
};

void lintFile(const QString& path, Outcome& outcome, CommandStreams& streams, bool json) {
    const auto result = InputFile::readPlist(path);
    const plist::Dictionary* manifest = result ? result->root.dictionary() : nullptr;
    if (!manifest) {
        const QString message = result ? path + QStringLiteral(": not a dictionary") : result.error().message;
        outcome.unreadable.append(
            QJsonObject{{QStringLiteral("file"), path}, {QStringLiteral("reason"), message}});
        if (!json)
            streams.printError(message);
        return;
    }
    for (const ManifestFinding& finding : ManifestLinter::lint(*manifest)) {
        outcome.findings.append(QJsonObject{{QStringLiteral("file"), path},
                                            {QStringLiteral("keyPath"), finding.keyPath},
                                            {QStringLiteral("reason"), finding.reason}});
        if (!json)
            streams.print(QStringLiteral("%1: %2: %3")
                              .arg(path,
                                   finding.keyPath.isEmpty() ? QStringLiteral("(manifest)") : finding.keyPath,
                                   finding.reason));
    }
}

} // namespace

QString ManifestsLintCommand::summary() const {
    return QStringLiteral("Find contradictions and likely mistakes in manifests");
}

QString ManifestsLintCommand::help() const {
    return QStringLiteral("Usage: quorlin-profile manifests lint PATH... [--json]\n"
                          "\n"
                          "Reads manifests in any form (raw, third-party or standard; a folder stands for\n"
                          "every .plist below it) and prints \"FILE: KEY.PATH: REASON\" for each finding:\n"
                          "a default or allowed value of another type than its key's, a default outside\n"
                          "the range or the allowed list, a range minimum above its maximum, a\n"
                          "\"pfm_format\" that doesn't compile or that the default doesn't match, a rule on\n"
                          "a key that doesn't exist or with values that can never match it, a key name\n"
                          "repeated at one level, subkeys on a key that can't hold them, an array without\n"
                          "an item prototype, an unknown \"pfm_\" key (with the known one it most likely\n"
                          "means), and platforms or versions that contradict the parent key's.\n"
                          "\n"
                          "  --json  print a JSON object instead: \"findings\" (file, keyPath, reason)\n"
                          "          and \"unreadable\" (file, reason)\n"
                          "\n"
                          "Exit status: 0 when no manifest has findings, 1 when one has, 2 for a usage\n"
                          "error or a file that isn't a readable manifest (the others are still linted).");
}

int ManifestsLintCommand::run(const QStringList& arguments, CommandStreams& streams) const {
    const auto parsed = ParsedArguments::parse(arguments, ParsedArguments::Options({}, {kJsonFlag}));
    if (!parsed)
        return usageError(streams, parsed.error());
    if (parsed->operands().isEmpty())
        return usageError(streams, QStringLiteral("no manifest given"));
    const bool json = parsed->hasFlag(kJsonFlag);
    Outcome outcome;
    for (const QString& path : parsed->operands()) {
        for (const QString& file : manifestFiles(path))
            lintFile(file, outcome, streams, json);
    }
    if (json)
        streams.writeOutput(QJsonDocument(QJsonObject{{QStringLiteral("findings"), outcome.findings},
                                                      {QStringLiteral("unreadable"), outcome.unreadable}})
                                .toJson(QJsonDocument::Indented));
    if (!outcome.unreadable.isEmpty())
        return ExitCode::usageOrInputError;
    return outcome.findings.isEmpty() ? ExitCode::success : ExitCode::findings;
}

} // namespace quorlin::cli
