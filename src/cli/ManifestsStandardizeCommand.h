#pragma once

#include "cli/Command.h"
#include "plist/Expected.h"

#include <QString>
#include <QStringList>

namespace quorlin::cli {

// manifests standardize SRC DEST [--store DIR] [--support DIR] [--json]:
// brings a folder of raw manifests into the standard form, one file per
// domain, and leaves exactly those files in DEST.
class ManifestsStandardizeCommand final : public Command {
public:
    QString name() const override { return QStringLiteral("manifests standardize"); }
    QString summary() const override;
    QString help() const override;
    int run(const QStringList& arguments, CommandStreams& streams) const override;

private:
    struct Folders {
        QString source;
        QString destination;
        QString store;
    };
    struct Summary {
        qsizetype filesRead = 0;
        qsizetype domainsWritten = 0;
        qsizetype domainsRemoved = 0;
        qsizetype domainsInDestination = 0;
        // Originals that gave no standardized file, relative to SRC.
        QStringList skipped;
    };

    Expected<Summary, QString> standardize(const Folders& folders,
                                           const std::optional<QString>& support) const;
    static std::optional<QString> checkFolders(const Folders& folders);
    // Makes DEST hold exactly the standardized files.
    static std::optional<QString> mirror(const QString& standardized, const QString& destination);
    static void printText(const Summary& summary, const Folders& folders, CommandStreams& streams);
    static void printJson(const Summary& summary, CommandStreams& streams);
};

} // namespace quorlin::cli
