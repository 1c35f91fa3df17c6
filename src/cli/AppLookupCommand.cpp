#include "cli/AppLookupCommand.h"

#include "apptools/AppSearchResults.h"
#include "apptools/iTunesQueryHelper.h"
#include "cli/CommonOptions.h"
#include "cli/ExitCode.h"
#include "cli/ParsedArguments.h"

#include <QEventLoop>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace quorlin::cli {

namespace {

using apptools::AppSearchResult;

std::optional<QList<AppSearchResult>> searchStore(const QString& term) {
    apptools::iTunesQueryHelper helper;
    std::optional<QList<AppSearchResult>> found;
    QEventLoop loop;
    helper.search(term, [&found, &loop](auto rows) {
        found = std::move(rows);
        loop.quit();
    });
    loop.exec();
    return found;
}

QJsonArray jsonOf(const QList<AppSearchResult>& rows) {
    QJsonArray array;
    for (const AppSearchResult& row : rows) {
        QJsonObject object{{QStringLiteral("appName"), row.appName},
                           {QStringLiteral("bundleId"), row.bundleId},
                           {QStringLiteral("resultType"), AppSearchResult::rawValue(row.resultType)}};
        if (row.artworkURL)
            object.insert(QStringLiteral("artworkURL"), row.artworkURL->toString());
        array.append(object);
    }
    return array;
}

} // namespace

QString AppLookupCommand::summary() const {
    return QStringLiteral("Find apps and their bundle identifiers by name or identifier");
}

QString AppLookupCommand::help() const {
    return QStringLiteral("Usage: quorlin-profile app lookup TERM [--json]\n"
                          "\n"
                          "Lists the apps whose name or bundle identifier contains TERM: the operating\n"
                          "system's own apps first, then those the App Store's search finds, then TERM\n"
                          "itself as a bundle identifier when no app has exactly that one. One line\n"
                          "each, with tabs between: the name, the bundle identifier and the kind\n"
                          "(\"System App\", \"Store App\" or \"Bundle Identifier\").\n"
                          "\n"
                          "Options:\n"
                          "  --json  print a JSON array instead, one object per app with appName,\n"
                          "          bundleId, resultType and, for store apps, artworkURL\n"
                          "\n"
                          "QUORLIN_ITUNES_SEARCH_URL replaces the App Store's search address.\n"
                          "\n"
                          "Exit status: 0 when the store answered, 1 when it could not be asked (the\n"
                          "system apps are still listed), 2 for a usage error.");
}

int AppLookupCommand::run(const QStringList& arguments, CommandStreams& streams) const {
    const auto parsed = ParsedArguments::parse(arguments, ParsedArguments::Options({}, {kJsonFlag}));
    if (!parsed)
        return usageError(streams, parsed.error());
    if (parsed->operands().size() != 1 || parsed->operands().first().isEmpty())
        return usageError(streams, QStringLiteral("give one search term"));

    const QString term = parsed->operands().first();
    auto rows = searchStore(term);
    const bool answered = rows.has_value();
    if (!answered) {
        streams.printError(
            QStringLiteral("%1: the App Store could not be asked; only the system apps are listed")
                .arg(term));
        rows = apptools::AppSearchResults::withoutStore(term);
    }
    if (parsed->hasFlag(kJsonFlag)) {
        streams.writeOutput(QJsonDocument(jsonOf(*rows)).toJson(QJsonDocument::Indented));
    } else {
        for (const AppSearchResult& row : *rows)
            streams.print(row.appName + u'\t' + row.bundleId + u'\t' +
                          AppSearchResult::label(row.resultType));
    }
    return answered ? ExitCode::success : ExitCode::findings;
}

} // namespace quorlin::cli
