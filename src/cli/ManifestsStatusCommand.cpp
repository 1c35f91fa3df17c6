#include "cli/ManifestsStatusCommand.h"

#include "cli/CommandLineTool.h"
#include "cli/CommonOptions.h"
#include "cli/ExitCode.h"
#include "cli/ParsedArguments.h"
#include "cli/ToolSettings.h"
#include "plist/DefaultsKey.h"
#include "supply/FolderBookmark.h"
#include "supply/LastUpdates.h"
#include "supply/ManifestRepository.h"
#include "supply/RepositoryStorePaths.h"
#include "supply/ResourceFolder.h"
#include "supply/StoreFile.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace quorlin::cli {

namespace {

// What the settings choose and what its store holds, read from disk alone.
struct RepositoryState {
    QString type;
    QString source;
    std::optional<QString> store;
    qsizetype manifestCount = 0;
    std::optional<LastUpdates> lastUpdates;
};

RepositoryState bundledState(const ResourceFolder& resources) {
    return RepositoryState{QStringLiteral("bundled"), resources.manifestsDirectory(), std::nullopt,
                           ManifestRepository::plistFiles(resources.manifestsDirectory()).size(),
                           std::nullopt};
}

void readStore(RepositoryState& state) {
    if (!state.store)
        return;
    state.manifestCount =
        ManifestRepository::plistFiles(QDir(*state.store).filePath(QStringLiteral("standardized"))).size();
    if (const auto stored =
            StoreFile::read(QDir(*state.store).filePath(QStringLiteral("last-updates.plist"))))
        state.lastUpdates = LastUpdates::decoded(*stored);
}

RepositoryState currentState(const UserDefaults& defaults, const ResourceFolder& resources) {
    const auto type = defaults.string(DefaultsKey::manifestRepositoryType);
    RepositoryState state;
    if (type == DefaultsValue::repositoryTypeOnline) {
        const QString address =
            defaults.string(DefaultsKey::onlineManifestRepositoryAddress).value_or(QString());
        const QString branch = defaults.string(DefaultsKey::onlineManifestRepositoryBranchName)
                                   .value_or(QStringLiteral("master"));
        state = RepositoryState{QStringLiteral("online"), address + QStringLiteral(" (") + branch + u')',
                                RepositoryStorePaths::storageDirectoryForRepositoryAddress(address, branch),
                                0, std::nullopt};
    } else if (type == DefaultsValue::repositoryTypeLocal) {
        const auto bookmark = defaults.data(DefaultsKey::localRepositoryPathBookmark);
        const auto resolution = bookmark ? FolderBookmark::open(*bookmark) : FolderBookmark::Resolution{};
        state = RepositoryState{QStringLiteral("local"), resolution.folder,
                                RepositoryStorePaths::storageDirectoryForLocalFolder(resolution.folder), 0,
                                std::nullopt};
    } else {
        return bundledState(resources);
    }
    readStore(state);
    return state;
}

QJsonObject json(const RepositoryState& state) {
    QJsonObject object{{QStringLiteral("type"), state.type},
                       {QStringLiteral("source"), state.source},
                       {QStringLiteral("manifests"), qint64(state.manifestCount)}};
    if (state.store)
        object.insert(QStringLiteral("store"), *state.store);
    if (state.lastUpdates) {
        QJsonArray items;
        for (const UpdateResultsItem& item : state.lastUpdates->updateResultsItems)
            items.append(QJsonObject{{QStringLiteral("domain"), item.domain},
                                     {QStringLiteral("status"), UpdateResultsItem::rawValue(item.status)}});
        object.insert(QStringLiteral("lastUpdate"),
                      state.lastUpdates->updateTime.toDateTime().toString(Qt::ISODate));
        object.insert(QStringLiteral("lastUpdateItems"), items);
    }
    return object;
}

} // namespace

QString ManifestsStatusCommand::summary() const {
    return QStringLiteral("Show which manifests the editor uses and what the last update brought");
}

QString ManifestsStatusCommand::help() const {
    return QStringLiteral("Usage: quorlin-profile manifests status [--json]\n"
                          "\n"
                          "Shows the manifest repository of the editor's settings (online, local or\n"
                          "bundled), where its store lies, how many standard-form manifests it holds, and\n"
                          "the domains the last update changed. Reads the disk only: nothing is checked or\n"
                          "downloaded (see \"manifests update\").\n"
                          "\n"
                          "  --json  print a JSON object instead: type, source, store, manifests,\n"
                          "          lastUpdate and lastUpdateItems\n"
                          "\n"
                          "Exit status: 0 when shown, 2 for a usage error or missing resources.");
}

int ManifestsStatusCommand::run(const QStringList& arguments, CommandStreams& streams) const {
    const auto parsed = ParsedArguments::parse(arguments, ParsedArguments::Options({}, {kJsonFlag}));
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
    const RepositoryState state = currentState(ToolSettings::defaults(), *resources);
    if (parsed->hasFlag(kJsonFlag)) {
        streams.writeOutput(QJsonDocument(json(state)).toJson(QJsonDocument::Indented));
        return ExitCode::success;
    }
    streams.print(QStringLiteral("Repository:\t%1 %2").arg(state.type, state.source));
    if (state.store)
        streams.print(QStringLiteral("Store:\t%1").arg(*state.store));
    streams.print(QStringLiteral("Manifests:\t%1").arg(state.manifestCount));
    if (state.lastUpdates) {
        streams.print(QStringLiteral("Last update:\t%1")
                          .arg(state.lastUpdates->updateTime.toDateTime().toString(Qt::ISODate)));
        for (const UpdateResultsItem& item : state.lastUpdates->updateResultsItems)
            streams.print(
                QStringLiteral("\t%1\t%2").arg(UpdateResultsItem::rawValue(item.status), item.domain));
    }
    return ExitCode::success;
}

} // namespace quorlin::cli
