#include "cli/ProfileFiles.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>

#include <algorithm>

namespace quorlin::cli {

namespace {

QStringList profilesBelow(const QString& folder) {
    QStringList files;
    QDirIterator it(folder, {QStringLiteral("*.mobileconfig")}, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext())
        files << it.next();
    // The iterator's order is the file system's; a report should read the same on every run.
    std::sort(files.begin(), files.end());
    return files;
}

} // namespace

ProfileFiles::Expansion ProfileFiles::expand(const QStringList& operands) {
    Expansion expansion;
    for (const QString& operand : operands) {
        if (!QFileInfo(operand).isDir()) {
            expansion.files << operand;
            continue;
        }
        const QStringList below = profilesBelow(operand);
        if (below.isEmpty())
            expansion.emptyFolders << operand;
        expansion.files << below;
    }
    return expansion;
}

} // namespace quorlin::cli
