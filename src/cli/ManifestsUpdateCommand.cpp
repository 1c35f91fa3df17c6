#include "cli/ManifestsUpdateCommand.h"

#include "cli/CommandLineTool.h"
#include "cli/CommonOptions.h"
#include "cli/ExitCode.h"
#include "cli/ParsedArguments.h"
#include "cli/ToolSettings.h"
#include "plist/DefaultsKey.h"
#include "supply/GitHubManifestRepository.h"
#include "supply/GitHubRepositoryErrorWords.h"
#include "supply/PFMDomainManager.h"
#include "supply/RepositoryStorePaths.h"
#include "supply/ResourceFolder.h"

#include <QEventLoop>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace quorlin::cli {

namespace {

const QString kAddressOption = QStringLiteral("--address");
const QString kBranchOption = QStringLiteral("--branch");

QString dateText(const std::optional<plist::Date>& date) {
    return date ? date->toDateTime().toString(Qt::ISODate) : QString();
}

QJsonArray resultsArray(const UpdatingRepositoryStatus::Results& results,
                        UpdateResultsItem::UpdateStatuses status) {
    QJsonArray array;
    for (const UpdateResultsItem& item : results) {
        if (item.status == status)
            array.append(item.domain);
    }
    return array;
}

// Progress goes to standard error, a line every tenth of the way, so a
// script's output holds the results alone.
void reportProgress(CommandStreams& streams, int done, int total) {
    if (total == 0)
        return;
    const int step = std::max(1, total / 10);
    if (done == 0 || done == total || done % step == 0)
        streams.printError(QStringLiteral("Downloading manifests: %1 of %2").arg(done).arg(total));
}

} // namespace

QString ManifestsUpdateCommand::summary() const {
    return QStringLiteral("Download the manifests that changed in the online repository");
}

QString ManifestsUpdateCommand::help() const {
    return QStringLiteral("Usage: quorlin-profile manifests update [--address URL] [--branch NAME] [--json]\n"
                          "\n"
                          "Checks the online manifest repository and downloads the manifests that changed\n"
                          "since the last check into the store that the editor reads, then brings them to\n"
                          "the standard form. The editor offers them at its next reload. By default the\n"
                          "repository of the editor's settings (or the public ProfileManifests project);\n"
                          "progress is printed on standard error.\n"
                          "\n"
                          "One line per domain that changed, with tabs between: \"updated\" or \"removed\",\n"
                          "the domain and the date of its manifest.\n"
                          "\n"
                          "  --address URL  a GitHub repository laid out like ProfileManifests\n"
                          "  --branch NAME  its branch (default: the settings', else \"master\")\n"
                          "  --json         print a JSON object instead: repository, branch, store,\n"
                          "                 updated, removed and errors\n"
                          "\n"
                          "The environment variable QUORLIN_RAW_CONTENT_URL replaces GitHub's static file\n"
                          "host with another base URL, for mirrors.\n"
                          "\n"
                          "Exit status: 0 when the check succeeded, 1 when it failed (the reason is on\n"
                          "standard error), 2 for a usage error or an invalid address or branch.");
}

int ManifestsUpdateCommand::run(const QStringList& arguments, CommandStreams& streams) const {
    const auto parsed = ParsedArguments::parse(
        arguments, ParsedArguments::Options({kAddressOption, kBranchOption}, {kJsonFlag}));
    if (!parsed)
        return usageError(streams, parsed.error());
    if (!parsed->operands().isEmpty())
        return usageError(streams,
                          QStringLiteral("unexpected argument '%1'").arg(parsed->operands().first()));

    const auto resources = ResourceFolder::locate();
    if (!resources) {
        streams.printError(ResourceFolder::missingMessage());
        return ExitCode::usageOrInputError;
    }
    UserDefaults& defaults = ToolSettings::defaults();
    const QString address =
        parsed->value(kAddressOption)
            .value_or(defaults.string(DefaultsKey::onlineManifestRepositoryAddress).value_or(QString()));
    const QString branch = parsed->value(kBranchOption)
                               .value_or(defaults.string(DefaultsKey::onlineManifestRepositoryBranchName)
                                             .value_or(QStringLiteral("master")));
    const auto prefix = QStringLiteral("%1 %2: ").arg(CommandLineTool::programName(), name());
    if (!GitHubManifestRepository::addressIsValid(address) ||
        !GitHubManifestRepository::branchIsValid(branch)) {
        const auto error = GitHubManifestRepository::addressIsValid(address)
                               ? GitHubRepositoryError::branchIsInvalid
                               : GitHubRepositoryError::addressIsInvalid;
        streams.printError(prefix + GitHubRepositoryErrorWords::message(error));
        return ExitCode::usageOrInputError;
    }
    const auto store = RepositoryStorePaths::storageDirectoryForRepositoryAddress(address, branch);
    auto repository =
        store ? GitHubManifestRepository::make(
                    *store, address, branch, PFMDomainManager::standardizationSettings(defaults, *resources))
              : nullptr;
    if (!repository) {
        streams.printError(prefix + QStringLiteral("the store for %1 can't be made").arg(address));
        return ExitCode::usageOrInputError;
    }

    QEventLoop loop;
    QObject::connect(repository.get(), &GitHubManifestRepository::downloadProgress,
                     [&streams](int done, int total) { reportProgress(streams, done, total); });
    QObject::connect(repository.get(), &GitHubManifestRepository::checkFinished, &loop, &QEventLoop::quit);
    if (repository->status().isCheckingForUpdates())
        loop.exec();

    const auto& status = repository->status();
    const QString failure = GitHubRepositoryErrorWords::reportMessage(status.errors(), true);
    if (parsed->hasFlag(kJsonFlag)) {
        QJsonArray errors;
        for (const GitHubRepositoryError error : status.errors())
            errors.append(GitHubRepositoryErrorWords::message(error));
        streams.writeOutput(
            QJsonDocument(
                QJsonObject{
                    {QStringLiteral("repository"), address},
                    {QStringLiteral("branch"), branch},
                    {QStringLiteral("store"), *store},
                    {QStringLiteral("updated"),
                     resultsArray(status.lastResults(), UpdateResultsItem::UpdateStatuses::updated)},
                    {QStringLiteral("removed"),
                     resultsArray(status.lastResults(), UpdateResultsItem::UpdateStatuses::removed)},
                    {QStringLiteral("errors"), errors},
                })
                .toJson(QJsonDocument::Indented));
    } else {
        for (const UpdateResultsItem& item : status.lastResults())
            streams.print(QStringList{UpdateResultsItem::rawValue(item.status), item.domain,
                                      dateText(item.manifestModificationDate)}
                              .join(u'\t'));
    }
    if (!failure.isEmpty()) {
        streams.printError(prefix + failure);
        return ExitCode::findings;
    }
    if (!parsed->hasFlag(kJsonFlag))
        streams.printError(status.lastResults().isEmpty()
                               ? QStringLiteral("The manifests are up to date.")
                               : QStringLiteral("%1 domains changed.").arg(status.lastResults().size()));
    return ExitCode::success;
}

} // namespace quorlin::cli
