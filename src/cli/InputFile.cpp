#include "cli/InputFile.h"

#include <QFile>
#include <QFileInfo>

#include <utility>

namespace quorlin::cli {

Expected<QByteArray, InputFile::Error> InputFile::read(const QString& path) {
    const auto cannotOpen = [&](const QString& reason) {
        return fail(Error{Error::Kind::unreadable, path + QStringLiteral(": cannot open: ") + reason});
    };
    // Opening a directory succeeds on Linux and then reads nothing.
    if (QFileInfo(path).isDir())
        return cannotOpen(QStringLiteral("is a directory"));
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return cannotOpen(file.errorString());
    return file.readAll();
}

Expected<plist::ReadResult, InputFile::Error> InputFile::readPlist(const QString& path) {
    const auto bytes = read(path);
    if (!bytes)
        return fail(bytes.error());
    auto result = plist::PlistReader::read(*bytes);
    if (!result)
        return fail(Error{Error::Kind::invalid, path + QStringLiteral(": ") + result.error().toString()});
    return std::move(result).value();
}

} // namespace quorlin::cli
