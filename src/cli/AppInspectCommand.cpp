#include "cli/AppInspectCommand.h"

#include "apptools/AppBundle.h"
#include "apptools/AppInformationViewModel.h"
#include "cli/CommonOptions.h"
#include "cli/ExitCode.h"
#include "cli/ParsedArguments.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace quorlin::cli {

namespace {

using apptools::AppBundle;
using apptools::AppInformationViewModel;

void insertIfPresent(QJsonObject& object, const char* key, const std::optional<QString>& value) {
    if (value)
        object.insert(QLatin1String(key), *value);
}

QJsonObject jsonOf(const QString& path, const AppBundle& bundle, const AppInformationViewModel& model) {
    QJsonObject object{{QStringLiteral("path"), path}};
    insertIfPresent(object, "name", model.name);
    insertIfPresent(object, "version", model.version);
    insertIfPresent(object, "build", model.build);
    insertIfPresent(object, "bundleID", model.bundleID);
    insertIfPresent(object, "teamID", model.teamID);
    insertIfPresent(object, "copyright", model.copyright);
    if (const auto architectures = bundle.architectures()) {
        QJsonArray names;
        for (const auto architecture : *architectures)
            names.append(AppBundle::architectureName(architecture));
        object.insert(QStringLiteral("architectures"), names);
    }
    insertIfPresent(object, "architecturesDescription", model.architectures);
    insertIfPresent(object, "platform", model.platform);
    insertIfPresent(object, "minOSVersion", model.minOSVersion);
    if (const auto bytes = bundle.size())
        object.insert(QStringLiteral("size"), double(*bytes));
    insertIfPresent(object, "developerName", model.developerName);
    insertIfPresent(object, "codeRequirement", model.codeRequirement);
    if (model.entitlements)
        object.insert(QStringLiteral("entitlements"), QJsonArray::fromStringList(*model.entitlements));
    return object;
}

void printText(CommandStreams& streams, const QString& path, const AppInformationViewModel& model) {
    const auto line = [&streams](const QString& label, const std::optional<QString>& value) {
        if (value && !value->isEmpty())
            streams.print(QStringLiteral("  %1: %2").arg(label, *value));
    };
    streams.print(path);
    line(QStringLiteral("Name"), model.name.value_or(AppInformationViewModel::missingName()));
    line(QStringLiteral("Version"), model.versionAndBuildNumber());
    for (const auto& row : model.identityRows())
        line(row.qualifier, row.information);
    for (const auto& row : model.characteristicsRows()) {
        if (row.field == QLatin1String("codeRequirement"))
            line(model.developerNameQualifier, model.developerName);
        line(row.qualifier, row.information);
    }
    if (!model.codeRequirement)
        line(model.developerNameQualifier, model.developerName);
    if (model.entitlements)
        line(QStringLiteral("Entitlements"), model.entitlements->join(QLatin1String(", ")));
}

} // namespace

QString AppInspectCommand::summary() const {
    return QStringLiteral("Show what an application or program file says about itself");
}

QString AppInspectCommand::help() const {
    return QStringLiteral("Usage: quorlin-profile app inspect PATH... [--json]\n"
                          "\n"
                          "Reads each PATH, an application folder (\"Name.app\", a Mac application or\n"
                          "an iOS application wrapped for the Mac) or a bare program file, and prints\n"
                          "its name, version, bundle identifier, team identifier, copyright,\n"
                          "architectures, platform, minimum OS version, size, developer name, code\n"
                          "requirement and entitlements, as far as they can be told. The code\n"
                          "requirement is the designated requirement of the embedded signature, in the\n"
                          "text form that code-requirement keys of a profile take. Only the headers\n"
                          "and the signature of a program file are read, never the whole file.\n"
                          "\n"
                          "Options:\n"
                          "  --json  print a JSON array instead, one object per path\n"
                          "\n"
                          "Exit status: 0 when every path was inspected, 1 when one is not an\n"
                          "application or program file, 2 when one doesn't exist (the others are\n"
                          "still inspected).");
}

int AppInspectCommand::run(const QStringList& arguments, CommandStreams& streams) const {
    const auto parsed = ParsedArguments::parse(arguments, ParsedArguments::Options({}, {kJsonFlag}));
    if (!parsed)
        return usageError(streams, parsed.error());
    if (parsed->operands().isEmpty())
        return usageError(streams, QStringLiteral("no application given"));

    const bool json = parsed->hasFlag(kJsonFlag);
    bool anyMissing = false;
    bool anyRefused = false;
    QJsonArray results;
    for (const QString& path : parsed->operands()) {
        if (!QFileInfo::exists(path)) {
            streams.printError(QStringLiteral("%1: no such file or folder").arg(path));
            anyMissing = true;
            continue;
        }
        const auto bundle = AppBundle::create(path);
        if (!bundle) {
            streams.printError(QStringLiteral("%1: The app bundle %2 could not be inspected.")
                                   .arg(path, QFileInfo(path).fileName()));
            anyRefused = true;
            continue;
        }
        const AppInformationViewModel model(*bundle);
        if (json)
            results.append(jsonOf(path, *bundle, model));
        else
            printText(streams, path, model);
    }
    if (json)
        streams.writeOutput(QJsonDocument(results).toJson(QJsonDocument::Indented));
    if (anyMissing)
        return ExitCode::usageOrInputError;
    return anyRefused ? ExitCode::findings : ExitCode::success;
}

} // namespace quorlin::cli
