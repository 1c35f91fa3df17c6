#include "cli/ProfileFiles.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace quorlin::cli {

namespace {

const QString kProfileSuffix = QStringLiteral(".mobileconfig");

void report(ProfileFiles::Expansion& expansion, const QString& path, const QString& reason) {
    expansion.problems.append({path, path + QStringLiteral(": ") + reason});
}

// Names that aren't UTF-8 come back with replacement characters, under
// which no file can be opened.
bool isUndecodable(const QString& name) {
    return name.contains(QChar::ReplacementCharacter);
}

void collect(const QString& folder, ProfileFiles::Expansion& expansion, QStringList& found) {
    const QDir dir(folder);
    if (!dir.isReadable()) {
        report(expansion, folder, QStringLiteral("cannot read this folder: permission denied"));
        return;
    }
    for (const QFileInfo& entry : dir.entryInfoList(QDir::Dirs | QDir::Files | QDir::NoDotAndDotDot)) {
        const bool isProfile = entry.isFile() && entry.fileName().endsWith(kProfileSuffix);
        const bool isFolder = entry.isDir() && !entry.isSymLink();
        if ((isProfile || isFolder) && isUndecodable(entry.fileName()))
            report(expansion, entry.filePath(),
                   QStringLiteral("the name is not valid UTF-8; rename it to use it"));
        else if (isFolder)
            collect(entry.filePath(), expansion, found);
        else if (isProfile)
            found << entry.filePath();
    }
}

} // namespace

ProfileFiles::Expansion ProfileFiles::expand(const QStringList& operands) {
    Expansion expansion;
    for (const QString& operand : operands) {
        if (!QFileInfo(operand).isDir()) {
            expansion.files << operand;
            continue;
        }
        QStringList below;
        collect(operand, expansion, below);
        // The file system's order differs between runs; a report should not.
        std::sort(below.begin(), below.end());
        if (below.isEmpty())
            report(expansion, operand, QStringLiteral("no .mobileconfig file in this folder"));
        expansion.files << below;
    }
    return expansion;
}

} // namespace quorlin::cli
