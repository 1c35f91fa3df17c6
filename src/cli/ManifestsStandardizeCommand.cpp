#include "cli/ManifestsStandardizeCommand.h"

#include "cli/CommandLineTool.h"
#include "cli/CommonOptions.h"
#include "cli/ExitCode.h"
#include "cli/OutputFile.h"
#include "cli/ParsedArguments.h"
#include "plist/ApplicationIdentity.h"
#include "supply/OriginalsFolderRepository.h"
#include "supply/PFMDomainManager.h"
#include "supply/RepositoryStorePaths.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>
#include <QTemporaryDir>

namespace quorlin::cli {

namespace {

const QString kStoreOption = QStringLiteral("--store");
const QString kSupportOption = QStringLiteral("--support");

bool takeFlag(QStringList& arguments, const QString& flag) {
    bool found = false;
    for (qsizetype i = 0; i < arguments.size() && arguments[i] != QStringLiteral("--");) {
        if (arguments[i] == flag) {
            arguments.removeAt(i);
            found = true;
        } else {
            ++i;
        }
    }
    return found;
}

QString canonical(const QString& path) {
    return UpdatingManifestRepository::canonicalPath(path);
}

bool overlaps(const QString& a, const QString& b) {
    return a == b || RepositoryStorePaths::isInside(a, b) || RepositoryStorePaths::isInside(b, a);
}

// The settings the editor gives its own repositories, so that what the
// tool writes is what the editor would have made of the same folder.
StandardizationSettings settings(const std::optional<QString>& support) {
    StandardizationSettings settings;
    settings.hidePayloadTopLevelKeys = true;
    settings.sortOrder = PFMDomainManager::defaultSortOrder();
    settings.scrubThirdPartyPlaceholders = true;
    settings.supportSearchDirectory = support;
    settings.supportVersion = ApplicationIdentity::shortVersionString();
    return settings;
}

bool sameContent(const QString& a, const QString& b) {
    QFile first(a);
    QFile second(b);
    return first.open(QIODevice::ReadOnly) && second.open(QIODevice::ReadOnly) &&
           first.size() == second.size() && first.readAll() == second.readAll();
}

// Why the copy failed, if it did.
std::optional<QString> copyAtomically(const QString& from, const QString& to) {
    QFile source(from);
    if (!source.open(QIODevice::ReadOnly))
        return source.errorString();
    if (const auto written = OutputFile::write(to, source.readAll()); !written)
        return written.error();
    return std::nullopt;
}

} // namespace

QString ManifestsStandardizeCommand::summary() const {
    return QStringLiteral("Bring a folder of manifests into the standard form, one file per domain");
}

QString ManifestsStandardizeCommand::help() const {
    return QStringLiteral(
        "Usage: quorlin-profile manifests standardize SRC DEST [--store DIR] [--support DIR] [--json]\n"
        "\n"
        "Reads the preference manifests of SRC, either a folder laid out like the\n"
        "ProfileManifests project (with a \"Manifests\" folder, whose subfolders give the\n"
        "categories) or any folder of manifests and its subfolders, and writes one\n"
        "standard-form manifest per payload domain: manifests of one domain are merged,\n"
        "the ProfileManifests dialect is converted, support files are overlaid, and\n"
        "sort priorities are set as the editor does for its own repositories.\n"
        "\n"
        "DEST then holds exactly the standardized files, side by side, and nothing else;\n"
        "it is made if missing and must hold nothing but \".plist\" files.\n"
        "\n"
        "  --store DIR    keep the store (the index of which original gave which file,\n"
        "                 and the settings it was made with) in DIR, so that a later run\n"
        "                 with the same DIR standardizes only what changed; by default a\n"
        "                 fresh temporary folder is used and every run is complete\n"
        "  --support DIR  overlay the \"<domain> manifest-support.plist\" files of DIR\n"
        "  --json         print the summary as a JSON object with filesRead,\n"
        "                 domainsWritten, domainsRemoved, domainsInDestination and\n"
        "                 skipped (the files of SRC that gave no standardized manifest)\n"
        "\n"
        "Exit status: 0 when every manifest file gave its domain, 1 when some files were\n"
        "skipped (listed), 2 for a usage error or a folder that can't be read or written.");
}

int ManifestsStandardizeCommand::run(const QStringList& arguments, CommandStreams& streams) const {
    QStringList remaining = arguments;
    const bool asJson = takeFlag(remaining, kJsonFlag);
    const auto parsed = ParsedArguments::parse(remaining, {kStoreOption, kSupportOption});
    if (!parsed)
        return usageError(streams, parsed.error());
    if (parsed->operands().size() != 2)
        return usageError(streams, QStringLiteral("needs a source and a destination folder"));

    // Without a store of the caller's, a fresh one makes every run complete.
    QTemporaryDir temporaryStore;
    const auto store = parsed->value(kStoreOption);
    if (!store && !temporaryStore.isValid())
        return usageError(streams, QStringLiteral("cannot make a temporary store folder"));
    const Folders folders{canonical(parsed->operands()[0]), canonical(parsed->operands()[1]),
                          canonical(store.value_or(temporaryStore.path()))};

    // Stored with the store's settings, so the same folder must read the same from anywhere.
    auto support = parsed->value(kSupportOption);
    if (support)
        support = canonical(*support);
    const auto summary = standardize(folders, support);
    if (!summary) {
        streams.printError(
            QStringLiteral("%1 %2: %3").arg(CommandLineTool::programName(), name(), summary.error()));
        return ExitCode::usageOrInputError;
    }
    if (asJson)
        printJson(*summary, streams);
    else
        printText(*summary, folders, streams);
    return summary->skipped.isEmpty() ? ExitCode::success : ExitCode::findings;
}

Expected<ManifestsStandardizeCommand::Summary, QString>
ManifestsStandardizeCommand::standardize(const Folders& folders,
                                         const std::optional<QString>& support) const {
    if (const auto problem = checkFolders(folders))
        return fail(*problem);
    const auto repository = OriginalsFolderRepository::make(folders.store, folders.source, settings(support));
    if (!repository)
        return fail(folders.store + QStringLiteral(": cannot make the store"));
    if (const auto problem = mirror(repository->standardizedManifestsDirectory(), folders.destination))
        return fail(*problem);

    Summary summary;
    const QStringList originals = repository->manifestFiles();
    summary.filesRead = originals.size();
    // A new repository's results are those of the refresh that made it.
    for (const UpdateResultsItem& result : repository->status().lastResults()) {
        if (result.status == UpdateResultsItem::UpdateStatuses::updated)
            ++summary.domainsWritten;
        else
            ++summary.domainsRemoved;
    }
    summary.domainsInDestination = ManifestRepository::plistFiles(folders.destination).size();
    QSet<QString> indexed;
    for (const ModificationIndexItem& item : repository->loadModificationIndex())
        indexed.insert(item.originalLocation);
    for (const QString& original : originals) {
        if (!indexed.contains(canonical(original)))
            summary.skipped.append(QDir(folders.source).relativeFilePath(original));
    }
    return summary;
}

std::optional<QString> ManifestsStandardizeCommand::checkFolders(const Folders& folders) {
    const QFileInfo source(folders.source);
    if (!source.isDir())
        return folders.source + QStringLiteral(": not a folder");
    if (!source.isReadable() || !source.isExecutable())
        return folders.source + QStringLiteral(": cannot read the folder");
    // Mirroring deletes files in DEST, and a store inside SRC would be read as originals.
    if (overlaps(folders.destination, folders.source) || overlaps(folders.destination, folders.store))
        return QStringLiteral("the destination must lie apart from the source and the store");
    if (overlaps(folders.store, folders.source))
        return QStringLiteral("the store must lie apart from the source");

    const QFileInfo destination(folders.destination);
    if (destination.exists() && !destination.isDir())
        return folders.destination + QStringLiteral(": not a folder");
    if (!QDir().mkpath(folders.destination))
        return folders.destination + QStringLiteral(": cannot make the folder");
    const QFileInfoList entries =
        QDir(folders.destination)
            .entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    for (const QFileInfo& entry : entries) {
        if (!entry.isFile() || entry.isSymLink() || entry.suffix() != QStringLiteral("plist"))
            return folders.destination + QStringLiteral(": holds other things than manifests (") +
                   entry.fileName() + QStringLiteral(")");
    }
    return std::nullopt;
}

std::optional<QString> ManifestsStandardizeCommand::mirror(const QString& standardized,
                                                           const QString& destination) {
    QSet<QString> names;
    for (const QString& file : ManifestRepository::plistFiles(standardized)) {
        const QString name = QFileInfo(file).fileName();
        names.insert(name);
        const QString target = QDir(destination).filePath(name);
        if (sameContent(file, target))
            continue;
        if (const auto failure = copyAtomically(file, target))
            return target + QStringLiteral(": cannot write: ") + *failure;
    }
    for (const QString& file : ManifestRepository::plistFiles(destination)) {
        if (!names.contains(QFileInfo(file).fileName()) && !QFile::remove(file))
            return file + QStringLiteral(": cannot remove the file");
    }
    return std::nullopt;
}

void ManifestsStandardizeCommand::printText(const Summary& summary, const Folders& folders,
                                            CommandStreams& streams) {
    streams.print(
        QStringLiteral("Read %1 manifest files from %2").arg(summary.filesRead).arg(folders.source));
    streams.print(QStringLiteral("Standardized %1 domains, removed %2; %3 holds %4 domains")
                      .arg(summary.domainsWritten)
                      .arg(summary.domainsRemoved)
                      .arg(folders.destination)
                      .arg(summary.domainsInDestination));
    if (summary.skipped.isEmpty())
        return;
    const qsizetype count = summary.skipped.size();
    streams.print(count == 1
                      ? QStringLiteral("Skipped 1 file that gave no standardized manifest:")
                      : QStringLiteral("Skipped %1 files that gave no standardized manifest:").arg(count));
    for (const QString& file : summary.skipped)
        streams.print(QStringLiteral("  ") + file);
}

void ManifestsStandardizeCommand::printJson(const Summary& summary, CommandStreams& streams) {
    const QJsonObject object{
        {QStringLiteral("filesRead"), qint64(summary.filesRead)},
        {QStringLiteral("domainsWritten"), qint64(summary.domainsWritten)},
        {QStringLiteral("domainsRemoved"), qint64(summary.domainsRemoved)},
        {QStringLiteral("domainsInDestination"), qint64(summary.domainsInDestination)},
        {QStringLiteral("skipped"), QJsonArray::fromStringList(summary.skipped)},
    };
    streams.writeOutput(QJsonDocument(object).toJson(QJsonDocument::Indented));
}

} // namespace quorlin::cli
