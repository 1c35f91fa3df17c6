#include "cli/ProfileFiles.h"

#include "documents/SystemErrorWords.h"
#include "plist/Expected.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <dirent.h>

namespace quorlin::cli {

namespace {

const QString kProfileSuffix = QStringLiteral(".mobileconfig");

void report(ProfileFiles::Expansion& expansion, const QString& path, const QString& reason) {
    expansion.problems.append({path, path + QStringLiteral(": ") + reason});
}

// Names that aren't UTF-8 can't be held as text, so the listings of Qt leave
// them out; the system's own listing finds them. Nothing can be opened under
// such a name. The error is the system's reason the folder can't be read.
Expected<QStringList, QString> undecodableNames(const QString& folder) {
    DIR* stream = ::opendir(QFile::encodeName(folder).constData());
    if (!stream)
        return fail(SystemErrorWords::describe(errno));
    QStringList names;
    while (const dirent* entry = ::readdir(stream)) {
        const QByteArray raw(entry->d_name);
        if (QFile::encodeName(QFile::decodeName(raw)) != raw)
            names << QFile::decodeName(raw);
    }
    ::closedir(stream);
    return names;
}

void collect(const QString& folder, ProfileFiles::Expansion& expansion, QStringList& found) {
    const auto undecodable = undecodableNames(folder);
    if (!undecodable) {
        report(expansion, folder, QStringLiteral("cannot read this folder: ") + undecodable.error());
        return;
    }
    for (const QString& name : *undecodable)
        report(expansion, QDir(folder).filePath(name),
               QStringLiteral("the name is not valid UTF-8; rename it to use it"));
    for (const QFileInfo& entry :
         QDir(folder).entryInfoList(QDir::Dirs | QDir::Files | QDir::NoDotAndDotDot)) {
        const bool isProfile = entry.isFile() && entry.fileName().endsWith(kProfileSuffix);
        const bool isFolder = entry.isDir() && !entry.isSymLink();
        if (isFolder)
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
